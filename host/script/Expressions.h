#pragma once

#include "system/values/Input.h"

#include <memory>
#include <string>

#include <QString>

namespace Marlox {

/// Evaluates the expressions of inputs in an interpreter of their own. An expression is one Lua
/// expression, or statements that return a value; a leading "=" is allowed. It sees, in this order,
/// `time` (frames) and `fps`, the functions of ExpressionLibrary.h (also as math.sin), the inputs
/// of its own tool by their ids (`Gain`; all of them also as `self.Gain`), and the other tools of
/// the document by name (`Blur1.Size`; characters that no name in a script can have stand as "_",
/// and tool("Blur 1").Size works for any name). Points have the fields X and Y.
///
/// Its result decides what is made: a number or a truth value a Number, {x, y} a Point, a text a
/// Text (so does a number for a Text input). It can change nothing outside itself, and it ends with
/// an error after 50 ms, or when it takes too much memory, together with all expressions of other
/// inputs that it asks for.
class Expressions {
public:
    Expressions();
    ~Expressions();
    Expressions(const Expressions&) = delete;
    Expressions& operator=(const Expressions&) = delete;

    /// Null and `error` ("line 2: ...") on failure. Nests: another input that is asked for may have
    /// an expression, too.
    Ref<Parameter> Evaluate(const Input& input, const std::string& text, double time,
                            QString* error);

    /// True for text that starts with "=", or that can be compiled and names something. Text that
    /// is only numbers and arithmetic is none.
    bool IsExpression(const QString& text);

private:
    class Private;
    std::unique_ptr<Private> d_;
};

} // namespace Marlox
