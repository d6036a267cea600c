#include "app/persist/param_text.h"
