#include "TestSupport.h"
