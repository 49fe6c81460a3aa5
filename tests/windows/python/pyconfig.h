// The configuration of Python for Windows, with what it says for the compiler of Windows only.
#pragma once

#include <stdint.h>

#define MS_WIN64
#define WINVER 0x0602
#define _WIN32_WINNT WINVER
#define NTDDI_VERSION 0x06020000
#define Py_NO_ENABLE_SHARED

#include <PC/pyconfig.h>

#undef HAVE_DYNAMIC_LOADING
#define MS_COREDLL // it has sys.winver
#define PY_SUPPORT_TIER 0
#define HAVE_BUILTIN_ATOMIC 1
#define HAVE_FSYNC 1
#define fsync _commit
#define HAVE_GETPPID 1
#define HAVE_INTPTR_T 1
#define HAVE_UINTPTR_T 1
#define HAVE_WCSFTIME 1
#define HAVE_PY_SSIZE_T 1
#define PY_SSIZE_T_MAX INT64_MAX
typedef int64_t Py_ssize_t;
