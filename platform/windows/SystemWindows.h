#pragma once

// The system's windows and controls, tamed as System.h is.

#include "platform/windows/System.h"

#include <commctrl.h>
#include <windowsx.h>

#undef LVM_GETEXTENDEDLISTVIEWSTYLE
#undef LVM_SETEXTENDEDLISTVIEWSTYLE
#undef LVS_EX_FULLROWSELECT
#undef LVS_EX_GRIDLINES
