#include "tavo/tavo.h"
