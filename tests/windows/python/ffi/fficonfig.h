// What the configuration of libffi would find for Windows, 64 bits.
#pragma once

#define HAVE_ALLOCA 1
#define HAVE_LONG_DOUBLE 1
#define HAVE_MEMCPY 1
#define STDC_HEADERS 1
#ifdef LIBFFI_ASM
#define FFI_HIDDEN(name)
#else
#define FFI_HIDDEN
#endif
