// The order of the proxy's operations in its dispatch table.
#include "renderer/vt_local_scene_proxy.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>

namespace {

// In the Itanium C++ ABI a pointer to a virtual member function holds 1 + the byte offset of its entry in the dispatch
// table.
template <class Operation> long slot(Operation operation) {
    long word;
    std::memcpy(&word, &operation, sizeof word);
    return (word - 1) / static_cast<long>(sizeof(void *));
}

TEST(Slots, every_operation_has_the_place_that_libraries_agree_on) {
    using Proxy = VtLocalSceneProxy;

    // The destructor has 0 and 1.
    EXPECT_EQ(slot(&Proxy::NewCamera), 2);
    EXPECT_EQ(slot(&Proxy::NewImager), 3);
    EXPECT_EQ(slot(&Proxy::NewInterface), 4);
    EXPECT_EQ(slot(&Proxy::NewInterior), 5);
    EXPECT_EQ(slot(&Proxy::NewLight), 6);
    EXPECT_EQ(slot(&Proxy::NewMaterial), 7);
    EXPECT_EQ(slot(&Proxy::NewObject), 8);
    EXPECT_EQ(slot(&Proxy::NewPattern), 9);
    EXPECT_EQ(slot(&Proxy::NewTexture), 10);
    EXPECT_EQ(slot(&Proxy::NewTrimmer), 11);
    EXPECT_EQ(slot(&Proxy::ImagerBegin), 12);
    EXPECT_EQ(slot(&Proxy::ImagerEnd), 13);
    EXPECT_EQ(slot(&Proxy::InteriorBegin), 14);
    EXPECT_EQ(slot(&Proxy::InteriorEnd), 15);
    EXPECT_EQ(slot(&Proxy::LightOn), 16);
    EXPECT_EQ(slot(&Proxy::LightOff), 17);
    EXPECT_EQ(slot(&Proxy::LightBegin), 18);
    EXPECT_EQ(slot(&Proxy::LightEnd), 19);
    EXPECT_EQ(slot(&Proxy::MaterialBegin), 20);
    EXPECT_EQ(slot(&Proxy::MaterialEnd), 21);
    EXPECT_EQ(slot(&Proxy::AddObject), 22);
    EXPECT_EQ(slot(&Proxy::TransformBegin), 23);
    EXPECT_EQ(slot(&Proxy::TransformEnd), 24);
    EXPECT_EQ(slot(&Proxy::Radiosity), 25);
    EXPECT_EQ(slot(&Proxy::Render), 26);
}

// A library's own class.
class Derived : public VtLocalSceneProxy {
  public:
    ~Derived() override;
    virtual void Appended();
};

TEST(Slots, what_a_library_appends_comes_behind) { EXPECT_EQ(slot(&Derived::Appended), 27); }

TEST(Slots, the_destructor_takes_the_first_two_entries) {
    VtLocalSceneProxy proxy(0);
    void **table;
    std::memcpy(&table, static_cast<const void *>(&proxy), sizeof table);

    // The destructor that only destroys, and the one that also frees.
    EXPECT_EQ(table[0], dlsym(RTLD_DEFAULT, "_ZN17VtLocalSceneProxyD1Ev"));
    EXPECT_EQ(table[1], dlsym(RTLD_DEFAULT, "_ZN17VtLocalSceneProxyD0Ev"));
    EXPECT_NE(table[0], nullptr);
    EXPECT_NE(table[0], table[1]);
}

} // namespace
