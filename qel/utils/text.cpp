#include "qel/utils/text.h"
