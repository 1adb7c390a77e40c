// The parameter list and its values keep what was put into them.
#include "tests/libvantor/scripted_scene.h"

#include <cstring>

namespace {

template <int N> VtMatrix<N> counted_matrix(double first) {
    VtMatrix<N> result;
    for (int r = 0; r < N; ++r)
        for (int c = 0; c < N; ++c)
            result[r][c] = first + N * r + c;
    return result;
}

template <class Value> void expect_same_bytes(const Value &a, const Value &b) {
    EXPECT_EQ(std::memcmp(&a, &b, sizeof(Value)), 0);
}

TEST(ArgList, KeepsEveryKindOfValue) {
    char text[] = "text";
    VtTransform transform;
    for (int r = 0; r < 4; ++r)
        for (int c = 0; c < 4; ++c)
            transform[r][c] = 100 + 4 * r + c;
    const VtInstanceArray<VtLong> longs;
    const VtInstanceArray<double> doubles;
    const VtInstanceArray<VtVector2> vector2s;
    const VtInstanceArray<VtVector3> vector3s;
    const VtInstanceArray<VtVector4> vector4s;
    const VtInstanceArray<VtMatrix2> matrix2s;
    const VtInstanceArray<VtMatrix3> matrix3s;
    const VtInstanceArray<VtMatrix4> matrix4s;
    const VtInstanceArray<VtTransform> transforms;

    VtArgList list(0, 0);
    EXPECT_EQ(list.Count(), 0);
    // Several rounds, so that the list has to grow.
    constexpr VtLong kinds = 19;
    for (int round = 0; round < 5; ++round) {
        list.Add(VtArgType(VtLong(-7)));
        list.Add(VtArgType(0.1));
        list.Add(VtArgType(text));
        list.Add(VtArgType(VtVector2(1, 2)));
        list.Add(VtArgType(VtVector3(1, 2, 3)));
        list.Add(VtArgType(VtVector4(1, 2, 3, 4)));
        list.Add(VtArgType(counted_matrix<2>(20)));
        list.Add(VtArgType(counted_matrix<3>(30)));
        list.Add(VtArgType(counted_matrix<4>(40)));
        list.Add(VtArgType(transform));
        list.Add(VtArgType(longs));
        list.Add(VtArgType(doubles));
        list.Add(VtArgType(vector2s));
        list.Add(VtArgType(vector3s));
        list.Add(VtArgType(vector4s));
        list.Add(VtArgType(matrix2s));
        list.Add(VtArgType(matrix3s));
        list.Add(VtArgType(matrix4s));
        list.Add(VtArgType(transforms));
    }
    ASSERT_EQ(list.Count(), 5 * kinds);

    for (VtLong i = 0; i < list.Count(); ++i)
        EXPECT_EQ(list.At(i).Tag(), static_cast<VtArgTag>(i % kinds + 1));
    const VtLong last = 4 * kinds;
    EXPECT_EQ(list.At(last).Long(), -7);
    EXPECT_EQ(list.At(last + 1).Double(), 0.1);
    EXPECT_EQ(list.At(last + 2).Text(), text);
    expect_same_bytes(list.At(last + 3).Vector2(), VtVector2(1, 2));
    expect_same_bytes(list.At(last + 4).Vector3(), VtVector3(1, 2, 3));
    expect_same_bytes(list.At(last + 5).Vector4(), VtVector4(1, 2, 3, 4));
    expect_same_bytes(list.At(last + 6).Matrix2(), counted_matrix<2>(20));
    expect_same_bytes(list.At(last + 7).Matrix3(), counted_matrix<3>(30));
    expect_same_bytes(list.At(last + 8).Matrix4(), counted_matrix<4>(40));
    expect_same_bytes(list.At(last + 9).Transform(), transform);
    EXPECT_EQ(&list.At(last + 10).LongArray(), &longs);
    EXPECT_EQ(&list.At(last + 11).DoubleArray(), &doubles);
    EXPECT_EQ(&list.At(last + 12).Vector2Array(), &vector2s);
    EXPECT_EQ(&list.At(last + 13).Vector3Array(), &vector3s);
    EXPECT_EQ(&list.At(last + 14).Vector4Array(), &vector4s);
    EXPECT_EQ(&list.At(last + 15).Matrix2Array(), &matrix2s);
    EXPECT_EQ(&list.At(last + 16).Matrix3Array(), &matrix3s);
    EXPECT_EQ(&list.At(last + 17).Matrix4Array(), &matrix4s);
    EXPECT_EQ(&list.At(last + 18).TransformArray(), &transforms);
}

} // namespace
