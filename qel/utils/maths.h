// The mathematics library: vectors, quaternions and matrices of the public interface are thin faces of these.
#pragma once
#include "qel/utils/maths_matrix.h"
#include "qel/utils/maths_vector.h"
