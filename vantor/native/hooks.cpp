// Hooks: what the loaded libVantor offers beyond the interface that every one has.
#include "vantor/native/hooks.h"

#include "renderer/vt_messages.h"
#include "renderer/vt_pictures.h"
#include "renderer/vt_vocabulary.h"
#include "vantor/native/reference.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <dlfcn.h>
#include <link.h>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

// The library that vantorPM has loaded, whichever it is; null if there is none.
void *loaded_library() {
    static void *const handle = dlopen("libVantor.so", RTLD_NOLOAD | RTLD_LAZY);
    return handle;
}

template <class Function> Function *exported(const char *name) {
    void *library = loaded_library();
    return library ? reinterpret_cast<Function *>(dlsym(library, name)) : nullptr;
}

struct Message {
    bool is_mistake;
    std::string text;
};

// What the library has reported since the last call began. It may report from any thread.
std::mutex collecting;
std::vector<Message> collected;

extern "C" void collect(void *, VtMessageKind kind, const char *text) {
    const std::lock_guard lock(collecting);
    try {
        collected.push_back({kind == VtMistake, text});
    } catch (const std::exception &) {
        // No memory left for a message: there will be an error about that.
    }
}

std::atomic<double> *progress_place = nullptr;
Py_buffer progress_buffer = {};
static_assert(std::atomic<double>::is_always_lock_free && sizeof(std::atomic<double>) == sizeof(double));

extern "C" void note_progress(void *, double fraction) { progress_place->store(fraction, std::memory_order_relaxed); }

// What a job shows of its picture, in memory that it shares: how many parts have come, then the window's pixels.
struct Preview {
    Py_buffer buffer;
    std::string path; // the picture's
    VtLong x0;
    VtLong y0;
    VtLong x1;
    VtLong y1;

    std::atomic<VtLong> *count() const { return static_cast<std::atomic<VtLong> *>(buffer.buf); }
    float *pixels() const { return static_cast<float *>(buffer.buf) + 2; }
};
Preview preview = {};

extern "C" void note_tile(void *, const VtPicture *tile) {
    if (preview.path != tile->path || tile->x0 < preview.x0 || tile->y0 < preview.y0 || tile->x1 > preview.x1 ||
        tile->y1 > preview.y1)
        return;
    const VtLong width = preview.x1 - preview.x0;
    const VtLong columns = tile->x1 - tile->x0;
    for (VtLong y = tile->y0; y < tile->y1; ++y)
        std::copy_n(tile->pixels + std::ptrdiff_t{3} * (y - tile->y0) * columns, 3 * columns,
                    preview.pixels() + 3 * (std::ptrdiff_t{y - preview.y0} * width + tile->x0 - preview.x0));
    preview.count()->fetch_add(1, std::memory_order_release);
}

bool append_messages(PyObject *list) {
    std::vector<Message> messages;
    {
        const std::lock_guard lock(collecting);
        messages.swap(collected);
    }
    for (const Message &message : messages) {
        const Reference text(
            PyUnicode_DecodeUTF8(message.text.data(), static_cast<Py_ssize_t>(message.text.size()), "replace"));
        const Reference pair(text ? PyTuple_Pack(2, message.is_mistake ? Py_True : Py_False, text.get()) : nullptr);
        if (!pair || PyList_Append(list, pair.get()) < 0)
            return false;
    }
    return true;
}

// The pictures that a call takes, by their paths; empty as long as there is none.
struct TakenPicture {
    std::vector<float> colors;
    std::optional<VtSums> part;
    std::string reduction;
    std::vector<double> sums;
};
using TakenPictures = std::map<std::string, TakenPicture>;

extern "C" bool take_picture(void *context, const VtPicture *picture) {
    try {
        auto &taken = *static_cast<TakenPictures *>(context);
        const auto found = taken.find(picture->path);
        if (found == taken.end())
            return false;
        const std::size_t pixels =
            static_cast<std::size_t>(picture->x1 - picture->x0) * static_cast<std::size_t>(picture->y1 - picture->y0);
        TakenPicture &to = found->second;
        to.colors.assign(picture->pixels, picture->pixels + 3 * pixels);
        if (picture->sums) {
            to.part = *picture->sums;
            to.reduction = to.part->reduction;
            to.sums.assign(to.part->values, to.part->values + 7 * pixels);
        }
        return true;
    } catch (const std::exception &) {
        return false; // no memory left here: a file it is
    }
}

bool list_paths(PyObject *pictures, TakenPictures &taken) {
    PyObject *path;
    PyObject *value;
    Py_ssize_t i = 0;
    while (PyDict_Next(pictures, &i, &path, &value)) {
        const char *text = PyUnicode_AsUTF8(path);
        if (!text)
            return false;
        taken[text];
    }
    return true;
}

template <class Number> PyObject *bytes_of(const std::vector<Number> &numbers) {
    return PyByteArray_FromStringAndSize(reinterpret_cast<const char *>(numbers.data()),
                                         static_cast<Py_ssize_t>(numbers.size() * sizeof(Number)));
}

// The colours; of a part a pair with (first, end, in_all, reduction, sums).
PyObject *given(const TakenPicture &picture) {
    Reference colors(bytes_of(picture.colors));
    if (!picture.part)
        return colors.release();
    Reference sums(bytes_of(picture.sums));
    if (!colors || !sums)
        return nullptr;
    return Py_BuildValue("N(iiisN)", colors.release(), picture.part->first, picture.part->end, picture.part->in_all,
                         picture.reduction.c_str(), sums.release());
}

bool give_pictures(const TakenPictures &taken, PyObject *pictures) {
    for (const auto &[path, picture] : taken) {
        if (picture.colors.empty())
            continue;
        const Reference value(given(picture));
        if (!value || PyDict_SetItemString(pictures, path.c_str(), value.get()) < 0)
            return false;
    }
    return true;
}

} // namespace

PyObject *library(PyObject *, PyObject *) {
    link_map *map = nullptr;
    void *handle = loaded_library();
    if (!handle || dlinfo(handle, RTLD_DI_LINKMAP, &map) != 0)
        Py_RETURN_NONE;
    return PyUnicode_DecodeFSDefault(map->l_name);
}

PyObject *vocabulary(PyObject *, PyObject *) {
    auto *const function = exported<decltype(VtVocabulary)>("VtVocabulary");
    const char *text = function ? function() : nullptr;
    if (!text)
        Py_RETURN_NONE;
    return PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), "replace");
}

PyObject *has_messages(PyObject *, PyObject *) {
    return PyBool_FromLong(exported<decltype(VtSetMessageHandler)>("VtSetMessageHandler") != nullptr);
}

PyObject *call(PyObject *, PyObject *arguments) {
    constexpr Py_ssize_t own = 3; // arguments up to the callable
    if (PyTuple_GET_SIZE(arguments) < own || !PyList_CheckExact(PyTuple_GET_ITEM(arguments, 0)) ||
        !PyDict_CheckExact(PyTuple_GET_ITEM(arguments, 1))) {
        PyErr_SetString(PyExc_TypeError, "expected a list, a dict, a callable and its arguments");
        return nullptr;
    }
    static auto *const set_message_handler = exported<decltype(VtSetMessageHandler)>("VtSetMessageHandler");
    static auto *const set_picture_handler = exported<decltype(VtSetPictureHandler)>("VtSetPictureHandler");
    PyObject *messages = PyTuple_GET_ITEM(arguments, 0);
    PyObject *pictures = PyTuple_GET_ITEM(arguments, 1);
    const Reference rest(PyTuple_GetSlice(arguments, own, PyTuple_GET_SIZE(arguments)));
    TakenPictures taken;
    if (!rest || !list_paths(pictures, taken))
        return nullptr;
    const bool takes_pictures = set_picture_handler && !taken.empty();

    // Only during the call: other scenes of this process go on to use the error stream, and files.
    if (set_message_handler)
        set_message_handler(collect, nullptr);
    if (takes_pictures)
        set_picture_handler(take_picture, &taken);
    Reference result(PyObject_CallObject(PyTuple_GET_ITEM(arguments, own - 1), rest.get()));
    if (takes_pictures)
        set_picture_handler(nullptr, nullptr);
    if (set_message_handler)
        set_message_handler(nullptr, nullptr);

    PyObject *type;
    PyObject *value;
    PyObject *traceback;
    PyErr_Fetch(&type, &value, &traceback); // of the call, if it failed
    const bool is_told = append_messages(messages) && give_pictures(taken, pictures);
    if (type)
        PyErr_Restore(type, value, traceback);
    return is_told ? result.release() : nullptr;
}

PyObject *progress_into(PyObject *, PyObject *buffer) {
    static auto *const set_handler = exported<decltype(VtSetProgressHandler)>("VtSetProgressHandler");
    if (!set_handler)
        Py_RETURN_FALSE;
    set_handler(nullptr, nullptr);
    if (progress_buffer.obj)
        PyBuffer_Release(&progress_buffer);
    if (buffer != Py_None) {
        if (PyObject_GetBuffer(buffer, &progress_buffer, PyBUF_WRITABLE) < 0)
            return nullptr;
        if (progress_buffer.len < static_cast<Py_ssize_t>(sizeof(double))) {
            PyBuffer_Release(&progress_buffer);
            PyErr_SetString(PyExc_ValueError, "expected a buffer of at least eight bytes");
            return nullptr;
        }
        progress_place = static_cast<std::atomic<double> *>(progress_buffer.buf);
        set_handler(note_progress, nullptr);
    }
    Py_RETURN_TRUE;
}

PyObject *preview_into(PyObject *, PyObject *arguments) {
    static auto *const set_handler = exported<decltype(VtSetTileHandler)>("VtSetTileHandler");
    PyObject *buffer;
    const char *path;
    if (!PyArg_ParseTuple(arguments, "Os(iiii)", &buffer, &path, &preview.x0, &preview.y0, &preview.x1, &preview.y1))
        return nullptr;
    if (!set_handler)
        Py_RETURN_FALSE;
    set_handler(nullptr, nullptr);
    if (preview.buffer.obj)
        PyBuffer_Release(&preview.buffer);
    if (PyObject_GetBuffer(buffer, &preview.buffer, PyBUF_WRITABLE) < 0)
        return nullptr;
    const Py_ssize_t pixels = Py_ssize_t{preview.x1 - preview.x0} * (preview.y1 - preview.y0);
    if (preview.x1 < preview.x0 || preview.y1 < preview.y0 || preview.buffer.len < 8 + 12 * pixels) {
        PyBuffer_Release(&preview.buffer);
        PyErr_SetString(PyExc_ValueError, "expected a buffer with room for the window's pixels");
        return nullptr;
    }
    preview.path = path;
    set_handler(note_tile, nullptr);
    Py_RETURN_TRUE;
}

PyObject *end_with(PyObject *, PyObject *process) {
    // The interpreter's threads stand still during a pass; this one does not. The kernel's own signal for the purpose
    // comes when the parent's thread ends, which is too early.
    const auto parent = static_cast<pid_t>(PyLong_AsLong(process));
    if (PyErr_Occurred())
        return nullptr;
    std::thread([parent] {
        while (getppid() == parent)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        _exit(1);
    }).detach();
    Py_RETURN_NONE;
}

PyObject *fork_process(PyObject *, PyObject *) {
    PyOS_BeforeFork();
    const pid_t child = fork();
    if (child == 0)
        PyOS_AfterFork_Child();
    else
        PyOS_AfterFork_Parent();
    return child < 0 ? PyErr_SetFromErrno(PyExc_OSError) : PyLong_FromLong(child);
}
