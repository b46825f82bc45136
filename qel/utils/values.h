// The plain values that the database stores: vector, quaternion, matrix. Single precision, trivially copyable.
#pragma once

namespace Qelp {

// Three components; w is padding, always 0.
struct Vector3 {
    float x = 0, y = 0, z = 0, w = 0;
    bool operator==(Vector3 const&) const = default;
};

// Vector part first, scalar last; the default is the identity.
struct Quat {
    float x = 0, y = 0, z = 0, w = 1;
    bool operator==(Quat const&) const = default;
};

// An affine transform of row vectors, p' = p M: rows 0 to 2 are the x, y and z axes, row 3 is the translation.
// Column 3 is 0 throughout. The default is the identity.
struct Matrix34 {
    float m[4][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 0}};
    bool operator==(Matrix34 const&) const = default;
};

}  // namespace Qelp
