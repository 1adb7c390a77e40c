// The container as an array object owns it.
#pragma once

#include "arrays/vt_instance_array.h"

/// A VtInstanceArray that remembers the block it used last, so that appending, iterating and reading one place again do
/// not walk the chain. It is what the container is to everybody else: the memory stands behind its three fields, where
/// a renderer library does not look, and every result is that of the container's own operations.
template <class T> class OwnedArray : public VtInstanceArray<T> {
  public:
    /// As the container's At().
    const T &Read(VtLong i) {
        if (Seek(i))
            return last.Slot(i);
        return this->At(i);
    }

    /// As the container's Store().
    void Write(VtLong i, const T &value) {
        if (Seek(i))
            last.Slot(i) = value;
    }

    /// As the container's Add().
    bool Append(const T &value) {
        if (last.Holds(this->size) && this->size != std::numeric_limits<VtLong>::max()) {
            last.Slot(this->size++) = value;
            return true;
        }
        return AppendElsewhere(value);
    }

    /// As the container's SetSize().
    bool Resize(VtLong n) {
        last = {};
        return this->SetSize(n);
    }

  private:
    // Into a new block, most often. Not a part of Append(), which is short without it.
    [[gnu::noinline]] bool AppendElsewhere(const T &value) {
        if (!this->Add(value))
            return false;
        last = this->Locate(this->size - 1);
        return true;
    }

    bool Seek(VtLong i) {
        if (!last.Holds(i))
            last = this->Locate(i);
        return last.count > 0;
    }

    typename VtInstanceArray<T>::Stretch last;
};
