// SPDX-License-Identifier: MIT
// A DLL with the C run-time's start alone.
extern "C" __declspec(dllexport) void nothing() {}
