// A geometry class reaching up into the functions: the layer check must refuse it.
#include "functions/helper.h"
