// One call into the recording libVantor: its line in the record, and the fault that may be asked of it.
#pragma once

#include "renderer/vt_arg_type.h"

#include <string>
#include <string_view>

// The record is the file that VANTOR_RECORD named when the first call came; without it nothing is written. It has one
// JSON object per line, in the order of the calls, and every line is written out at once, so that a process that dies
// leaves a complete record.
//
// Each line has "call", the name of the function as C++ spells it (constructors and destructors too), and then the
// arguments by name. Proxies, lists and values are known by serial numbers, one sequence for all, so that each
// construction can be matched with its destruction: "object" is the one made, destroyed or called, "list" and "added"
// are arguments. Creation calls end with "result". Reals are written in scientific form, the shortest that reads back
// as the same double, and as NaN, Infinity and -Infinity; pointers as integers. Python's json reads all of it.
//
// Faults come from the environment, which is read again at each call, so that a test can switch them in its own
// process:
//
//   VANTOR_RECORD_THROW=NAME or NAME:K   The call of that name, as the record spells it, throws a std::runtime_error
//                                        with the text "NAME throws", and its line has "throws". K (1 if not given)
//                                        picks the K-th VtArgType or VtArgList::Add since the last VtArgList was made;
//                                        other calls throw every time. Destructors never throw.
//   VANTOR_RECORD_ID=N                   Creation calls return N instead of the scene's own count.
namespace recording {

/// The next serial number, from 1.
int new_serial();

/// The id that a creation call returns: the one asked for, or the regular one.
VtLong id_or(VtLong regular);

/// Arrays of more elements than this are recorded by size, address and checksum.
constexpr VtLong listed_elements = 64;

std::string json(VtLong number);
std::string json(double number);
std::string json(const void *address);
/// A text, or null.
std::string json(const char *text);

// A vector is the list of its components, a matrix the list of its rows.
template <int N> std::string json(const VtVector<N> &vector);
template <int N> std::string json(const VtMatrix<N> &matrix);
inline std::string json(const VtTransform &transform) { return json(transform.Matrix()); }

class Call {
  public:
    /// `place` is the call's number among its kind since the last list was made, where that is counted.
    explicit Call(const char *name, int place = 1);

    template <class Value> Call &with(const char *key, const Value &value) { return with_json(key, json(value)); }

    /// An array: where it is, its size, and its elements or their checksum (64-bit FNV-1a of the bytes, in order).
    template <class T> Call &with_array(const VtInstanceArray<T> &array) {
        const bool listed = array.Size() <= listed_elements;
        std::string elements;
        std::uint64_t checksum = 0xcbf29ce484222325;
        array.ForEachBlock([&](const T *element, VtLong count) {
            for (VtLong i = 0; listed && i < count; ++i)
                elements += (elements.empty() ? "" : ", ") + json(element[i]);
            const auto *bytes = reinterpret_cast<const unsigned char *>(element);
            for (std::size_t i = 0; !listed && i < static_cast<std::size_t>(count) * sizeof(T); ++i)
                checksum = (checksum ^ bytes[i]) * 0x100000001b3;
        });
        with("address", static_cast<const void *>(&array)).with("size", array.Size());
        return listed ? with_json("value", "[" + elements + "]") : with_json("checksum", std::to_string(checksum));
    }

    /// Writes the line, and throws if that is asked for.
    void done();
    /// Writes the line.
    void done_without_fault() noexcept;

  private:
    Call &with_json(std::string_view key, std::string_view value);

    const char *name;
    bool throws;
    std::string line;
};

template <class Indexed> std::string json_list(const Indexed &items, int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i)
        text += (i ? ", " : "") + json(items[i]);
    return text + "]";
}

template <int N> std::string json(const VtVector<N> &vector) { return json_list(vector, N); }
template <int N> std::string json(const VtMatrix<N> &matrix) { return json_list(matrix, N); }

} // namespace recording
