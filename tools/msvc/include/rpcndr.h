// Wine's gives interfaces no GUID that `__uuidof` can find.
#pragma once
#include_next <rpcndr.h>

#undef DECLSPEC_UUID
#undef MIDL_INTERFACE
#define DECLSPEC_UUID(text) __declspec(uuid(text))
#define MIDL_INTERFACE(text) struct __declspec(uuid(text)) __declspec(novtable)
