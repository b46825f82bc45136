// The library's vector: a standard vector under the platform's name.
#pragma once
#include <vector>

namespace Qelutils {

template<class T> using Vector = std::vector<T>;

}  // namespace Qelutils
