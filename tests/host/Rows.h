#pragma once

#include <QTest>

namespace Marlox {

/// The rows of a data-driven test: Rows<QString, int> row("text", "count") names the columns, and
/// row("one word", "word", 1) adds a row of that name.
template <class... Values>
class Rows {
public:
    template <class... Names>
    explicit Rows(Names... columns)
    {
        (QTest::addColumn<Values>(columns), ...);
    }
    void operator()(const char* name, const Values&... values) const
    {
        (QTest::newRow(name) << ... << values);
    }
};

} // namespace Marlox
