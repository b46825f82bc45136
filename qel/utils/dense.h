// Matrices and vectors of any size, for numerical work: rows of numbers, row after row in one block of memory.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace Qelp {

template<class T> using Vector = std::vector<T>;

// Row-major. Indices are unchecked; a negative size is read as 0. `m[row]` points at the row's numbers.
template<class T> class Matrix {
public:
    Matrix() = default;
    Matrix(int rows, int columns, T value = T()) :
        m_rows(std::max(rows, 0)), m_columns(std::max(columns, 0)), m_numbers(index(m_rows, 0), value) {}

    int rows() const { return m_rows; }
    int columns() const { return m_columns; }
    T* operator[](int row) { return m_numbers.data() + index(row, 0); }
    T const* operator[](int row) const { return m_numbers.data() + index(row, 0); }
    T& operator()(int row, int column) { return m_numbers[index(row, column)]; }
    T const& operator()(int row, int column) const { return m_numbers[index(row, column)]; }
    Vector<T> const& numbers() const { return m_numbers; }
    bool operator==(Matrix const&) const = default;

private:
    std::size_t index(int row, int column) const { return std::size_t(row) * std::size_t(m_columns) + column; }

    int m_rows = 0, m_columns = 0;
    Vector<T> m_numbers;
};

// Whether every number lies within -limit and limit; what is not a number lies nowhere.
inline bool areWithin(Vector<double> const& numbers, double limit) {
    return std::all_of(numbers.begin(), numbers.end(), [=](double x) { return std::abs(x) <= limit; });
}

}  // namespace Qelp
