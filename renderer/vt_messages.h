// Messages and progress, for a program that wants to have them itself. Optional: a renderer library may leave it out.
#pragma once

#include "algebra/vt_base.h"

// Without a handler the library tells its messages and its progress in its own way, as on the error stream. While one
// is set, they go to the handler instead. There is one handler of each kind in a process, for all scenes; it may be set
// and taken away between calls, by the thread that makes them. The functions have C names, so that they can be asked
// for by dlsym(); a program has to work without them.

extern "C" {

enum VtMessageKind : VtLong {
    VtNote = 0,    ///< Worth knowing, but nothing is wrong.
    VtMistake = 1, ///< Something is wrong with the scene.
};

/// Called with one message: a line of UTF-8 without its end, and without the library's name in front. The text lasts
/// until the handler returns. Messages may come from any thread, and never two at a time.
typedef void (*VtMessageHandler)(void *context, VtMessageKind kind, const char *text);

/// From now on messages go to the handler, with the context; null ends that. A library that lets users silence its
/// error stream still calls the handler.
VT_API void VtSetMessageHandler(VtMessageHandler handler, void *context);

/// Called now and then during a pass, from any thread, with the fraction of it that is done: 0 to 1, and never less
/// than before in the same pass.
typedef void (*VtProgressHandler)(void *context, double fraction);

/// From now on progress goes to the handler, with the context; null ends that.
VT_API void VtSetProgressHandler(VtProgressHandler handler, void *context);
}
