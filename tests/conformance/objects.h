// Objects of the library under test, made and destroyed as the module does it.
#pragma once

#include "arrays.h"
#include "kinds.h"
#include "library.h"
#include "renderer/vt_local_scene_proxy.h"
#include "symbols.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

template <class T> bool same_bits(const T &a, const T &b) { return std::memcmp(&a, &b, sizeof a) == 0; }

/// A value whose doubles are all different.
template <class Value> Value sample() {
    if constexpr (std::is_class_v<Value>) {
        std::array<double, sizeof(Value) / sizeof(double)> entries;
        for (std::size_t i = 0; i < entries.size(); ++i)
            entries[i] = 0.1 + static_cast<double>(i);
        return std::bit_cast<Value>(entries);
    } else {
        return static_cast<Value>(3);
    }
}

/// Room for an object that the library makes, between guard bytes. All of it is filled before, so that what the library
/// does not set cannot be zero by luck.
template <class Object> class Room {
  public:
    Room() { std::memset(bytes, filling, sizeof bytes); }
    Room(const Room &) = delete;
    Room &operator=(const Room &) = delete;

    void *place() { return bytes + margin; }
    Object &object() { return *std::launder(reinterpret_cast<Object *>(place())); }

    /// Fails the check if a guard byte has changed.
    void require_untouched_surroundings(const std::string &what) const {
        const auto is_filling = [](unsigned char byte) { return byte == filling; };
        require(std::all_of(bytes, bytes + margin, is_filling), what + " wrote in front of its room");
        require(std::all_of(std::end(bytes) - margin, std::end(bytes), is_filling),
                what + " wrote beyond its room of " + std::to_string(sizeof(Object)) + " bytes");
    }

  private:
    static constexpr unsigned char filling = 0xA5;
    // Aligned to 8 bytes and no more, which is all that the headers promise.
    static constexpr std::size_t margin = 248;
    alignas(16) unsigned char bytes[margin + sizeof(Object) + margin];
};

/// A VtArgType that the library makes, and destroys when it goes out of scope.
class MadeValue {
  public:
    template <class Value> static std::unique_ptr<MadeValue> of(const Library &library, const Value &value) {
        std::unique_ptr<MadeValue> made(new MadeValue(library));
        library.function<void(void *, Value)>(value_kind<Value>().constructor())(made->room.place(), value);
        made->is_made = true;
        return made;
    }
    static std::unique_ptr<MadeValue> of(const Library &library, char *text) {
        std::unique_ptr<MadeValue> made(new MadeValue(library));
        library.function<void(void *, char *)>(text_kind().constructor())(made->room.place(), text);
        made->is_made = true;
        return made;
    }
    template <class Element>
    static std::unique_ptr<MadeValue> of_array(const Library &library, const VtInstanceArray<Element> &array) {
        std::unique_ptr<MadeValue> made(new MadeValue(library));
        library.function<void(void *, const VtInstanceArray<Element> &)>(array_kind<Element>().constructor())(
            made->room.place(), array);
        made->is_made = true;
        return made;
    }
    static std::unique_ptr<MadeValue> copy_of(const Library &library, const VtArgType &original) {
        std::unique_ptr<MadeValue> made(new MadeValue(library));
        library.function<void(void *, const VtArgType &)>(symbols::value_copy)(made->room.place(), original);
        made->is_made = true;
        return made;
    }
    ~MadeValue() { destroy(); }

    const VtArgType &value() { return room.object(); }
    const Room<VtArgType> &surroundings() const { return room; }

    void destroy() {
        if (void *destructor = is_made ? library.address(symbols::value_destructor) : nullptr)
            reinterpret_cast<void (*)(void *)>(destructor)(room.place());
        is_made = false;
    }

  private:
    explicit MadeValue(const Library &of_library) : library(of_library) {}

    const Library &library;
    Room<VtArgType> room;
    bool is_made = false;
};

/// A VtArgList that the library makes, and destroys when it goes out of scope. Each value is destroyed as soon as it is
/// added.
class MadeList {
  public:
    explicit MadeList(const Library &of_library) : library(of_library) {
        library.function<void(void *, VtLong, VtLong)>(symbols::list_constructor)(room.place(), 0, 0);
        is_made = true;
    }
    MadeList(const MadeList &) = delete;
    MadeList &operator=(const MadeList &) = delete;
    ~MadeList() { destroy(); }

    VtArgList &list() { return room.object(); }
    const Room<VtArgList> &surroundings() const { return room; }

    template <class Value> void add(const Value &value) { add_made(*MadeValue::of(library, value)); }
    /// The name of a parameter; the characters live for ever.
    void add_name(const char *name) { add_made(*MadeValue::of(library, const_cast<char *>(name))); }
    /// A text that lives as long as the list.
    void add_text(const std::string &text) {
        texts.push_back(std::make_unique<GuardedText>(text));
        add_made(*MadeValue::of(library, texts.back()->characters()));
    }
    template <class Element> void add_array(const VtInstanceArray<Element> &array) {
        add_made(*MadeValue::of_array(library, array));
    }
    /// An array that lives as long as the list; see GuardedArray.
    template <class Element> void add_array_of(const std::vector<VtLong> &counts, VtLong size) {
        auto array = std::make_shared<GuardedArray<Element>>(counts, size);
        arrays.push_back(array);
        add_array<Element>(*array);
    }

    VtLong count() { return library.function<VtLong(const VtArgList &)>(symbols::list_count)(list()); }
    const VtArgType &at(VtLong i) {
        return library.function<const VtArgType &(const VtArgList &, VtLong)>(symbols::list_at)(list(), i);
    }

    void destroy() {
        if (void *destructor = is_made ? library.address(symbols::list_destructor) : nullptr)
            reinterpret_cast<void (*)(void *)>(destructor)(room.place());
        is_made = false;
    }

  private:
    void add_made(MadeValue &made) {
        library.function<void(VtArgList &, const VtArgType &)>(symbols::list_add)(list(), made.value());
    }

    const Library &library;
    Room<VtArgList> room;
    bool is_made = false;
    std::vector<std::unique_ptr<GuardedText>> texts;
    std::vector<std::shared_ptr<void>> arrays;
};

/// A proxy as the module makes it; destroyed through its dispatch table.
class MadeScene {
  public:
    explicit MadeScene(const Library &library, VtLong number = 10240) {
        auto *construct = library.function<void(void *, VtLong)>(symbols::proxy_constructor);
        void *room = ::operator new(sizeof(VtLocalSceneProxy));
        try {
            construct(room, number);
        } catch (...) {
            ::operator delete(room);
            throw;
        }
        proxy = static_cast<VtLocalSceneProxy *>(room);
    }
    MadeScene(const MadeScene &) = delete;
    MadeScene &operator=(const MadeScene &) = delete;
    ~MadeScene() { delete proxy; }

    VtLocalSceneProxy *operator->() const { return proxy; }
    VtLocalSceneProxy &operator*() const { return *proxy; }

    void *slot(std::size_t i) const {
        void **table;
        std::memcpy(&table, static_cast<const void *>(proxy), sizeof table);
        return table[i];
    }

  private:
    VtLocalSceneProxy *proxy;
};

inline VtArgTag tag_of(const Library &library, const VtArgType &value) {
    return library.function<VtArgTag(const VtArgType &)>(symbols::value_tag)(value);
}

template <class Result> Result get(const Library &library, const Kind &kind, const VtArgType &value) {
    return library.function<Result(const VtArgType &)>(kind.accessor())(value);
}
inline std::string text_in(const Library &library, const VtArgType &value) {
    return get<const char *>(library, text_kind(), value);
}
template <class Value> Value value_in(const Library &library, const VtArgType &value) {
    using Result = std::conditional_t<std::is_class_v<Value>, const Value &, Value>;
    return get<Result>(library, value_kind<Value>(), value);
}
template <class Element> const VtInstanceArray<Element> &array_in(const Library &library, const VtArgType &value) {
    return get<const VtInstanceArray<Element> &>(library, array_kind<Element>(), value);
}
