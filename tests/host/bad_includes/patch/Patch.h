// A host header that names another by its bare file name.
#include "Value.h"
