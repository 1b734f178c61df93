#pragma once

// The component and automation interface of the operating system, under its real names: the SDK's own headers
// on Windows, the portable implementation of exactly the calls this system uses elsewhere. Every other file
// includes this one and never asks which system it is on.

#ifdef _WIN32
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <objbase.h>
#include <oleauto.h>
#include <windows.h>

#ifndef E_BOUNDS // mingw-w64's headers lack it.
#define E_BOUNDS _HRESULT_TYPEDEF_(0x8000000B)
#endif

// Marks what the shared platform library offers; on Windows the few helpers are linked statically.
#define VANT_PLATFORM_API
#else
#include "platform/portable/automation.h"
#include "platform/portable/classes.h"
#include "platform/portable/kernel.h"
#include "platform/portable/unknown.h"
#include "platform/portable/user.h"
#endif
