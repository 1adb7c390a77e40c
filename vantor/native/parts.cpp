// Parts of a picture: passes that have made some of its samples, put together.
#include "vantor/native/parts.h"

#include "libvantor/base/pairwise_sum.h"
#include "libvantor/images/reading.h"
#include "vantor/native/reference.h"

#include <cstring>

namespace {

using vantor::PartSums;
using vantor::SampleSums;

// A part as a script has it; false with an error set if it is none.
bool take_part(PyObject *value, PartSums &part) {
    const char *reduction;
    Py_buffer sums = {};
    if (!PyArg_ParseTuple(value, "iiisy*", &part.samples.first, &part.samples.end, &part.samples.in_all, &reduction,
                          &sums))
        return false;
    const std::optional<vantor::Reduction> known = vantor::reduction_named(reduction);
    const bool is_good = known && part.samples.is_subtree() && sums.len > 0 &&
                         static_cast<std::size_t>(sums.len) % sizeof(SampleSums) == 0;
    if (is_good) {
        part.reduction = *known;
        part.pixels.resize(static_cast<std::size_t>(sums.len) / sizeof(SampleSums));
        std::memcpy(part.pixels.data(), sums.buf, static_cast<std::size_t>(sums.len));
    } else {
        PyErr_Format(PyExc_ValueError, "samples %d to %d of %d are no part with sums", part.samples.first,
                     part.samples.end - 1, part.samples.in_all);
    }
    PyBuffer_Release(&sums);
    return is_good;
}

// Whether the second can be added to the first.
bool fits(const PartSums &first, const PartSums &second) {
    return first.samples.end == second.samples.first && first.samples.in_all == second.samples.in_all &&
           first.reduction == second.reduction && first.pixels.size() == second.pixels.size();
}

bool take_parts(PyObject *list, std::vector<PartSums> &parts) {
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list); ++i) {
        PartSums part{};
        if (!take_part(PyList_GET_ITEM(list, i), part))
            return false;
        if (!parts.empty() && !fits(parts.back(), part)) {
            PyErr_SetString(PyExc_ValueError, "the parts do not follow upon each other");
            return false;
        }
        parts.push_back(std::move(part));
    }
    if (parts.empty())
        PyErr_SetString(PyExc_ValueError, "there is no part");
    return !parts.empty();
}

// As a script has it.
PyObject *given(const PartSums &part) {
    const std::string_view reduction = vantor::reduction_names[static_cast<std::size_t>(part.reduction)];
    PyObject *sums = PyByteArray_FromStringAndSize(reinterpret_cast<const char *>(part.pixels.data()),
                                                   static_cast<Py_ssize_t>(part.pixels.size() * sizeof(SampleSums)));
    if (!sums)
        return nullptr;
    return Py_BuildValue("(iiisN)", part.samples.first, part.samples.end, part.samples.in_all, reduction.data(), sums);
}

} // namespace

PyObject *read_part(PyObject *, PyObject *argument) {
    PyObject *encoded = nullptr;
    if (!PyUnicode_FSConverter(argument, &encoded))
        return nullptr;
    const Reference held(encoded);
    const char *path = PyBytes_AS_STRING(encoded);
    const vantor::ReadPart read = vantor::read_part(path);
    if (!read.picture) {
        PyErr_Format(PyExc_OSError, "cannot read \"%s\": %s", path, read.why_not.c_str());
        return nullptr;
    }
    const vantor::Picture &picture = *read.picture;
    Reference part(given(*picture.part));
    if (!part)
        return nullptr;
    const vantor::PixelArea &window = picture.window;
    return Py_BuildValue("ii(iiii)N", picture.full_width, picture.full_height, window.x0, window.y0, window.x1,
                         window.y1, part.release());
}

PyObject *join_parts(PyObject *, PyObject *arguments) {
    PyObject *first;
    PyObject *second;
    if (!PyArg_ParseTuple(arguments, "OO", &first, &second))
        return nullptr;
    try {
        PartSums part{};
        PartSums following{};
        if (!take_part(first, part) || !take_part(second, following))
            return nullptr;
        if (!fits(part, following)) {
            PyErr_SetString(PyExc_ValueError, "the parts do not follow upon each other");
            return nullptr;
        }
        part.add(following);
        return given(part);
    } catch (const std::bad_alloc &) {
        return PyErr_NoMemory();
    }
}

PyObject *sum_parts(PyObject *, PyObject *list) {
    if (!PyList_CheckExact(list)) {
        PyErr_SetString(PyExc_TypeError, "expected a list of parts");
        return nullptr;
    }
    try {
        std::vector<PartSums> parts;
        if (!take_parts(list, parts))
            return nullptr;
        vantor::PairwiseSum<PartSums> sum;
        for (PartSums &part : parts) {
            const int groups = part.samples.groups();
            sum.add(std::move(part), groups);
        }
        const PartSums whole = sum.take();
        Reference bytes(PyByteArray_FromStringAndSize(
            nullptr, static_cast<Py_ssize_t>(whole.pixels.size() * sizeof(vantor::Color))));
        if (!bytes)
            return nullptr;
        char *to = PyByteArray_AS_STRING(bytes.get());
        for (std::size_t i = 0; i < whole.pixels.size(); ++i, to += sizeof(vantor::Color)) {
            const vantor::Color color = whole.value(i);
            std::memcpy(to, &color, sizeof color);
        }
        return bytes.release();
    } catch (const std::bad_alloc &) {
        return PyErr_NoMemory();
    }
}
