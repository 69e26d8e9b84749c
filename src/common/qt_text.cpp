// Header-only conversions; this file keeps the layer's file list uniform.
#include "common/qt_text.h"
