#include "script/ScriptQt.h"

#include <cmath>

#include <QColor>
#include <QMetaProperty>
#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QStringList>

namespace Marlox {

namespace {

ScriptVal List(std::initializer_list<double> numbers)
{
    ScriptVal list = ScriptVal::MakeTable();
    for (double number : numbers)
        list.Append(ScriptVal(number));
    return list;
}

/// `count` numbers from the start of a list; nothing if there are fewer or others.
std::optional<std::vector<double>> Numbers(const ScriptVal& value, std::size_t count)
{
    std::vector<double> numbers;
    for (const ScriptVal& element : value.Elements()) {
        if (element.IsNumber())
            numbers.push_back(element.ToNumber());
    }
    if (numbers.size() < count || numbers.size() != value.Length())
        return {};
    return numbers;
}

std::optional<QVariant> ToGeometry(const ScriptVal& value, int type)
{
    const bool rectangle = type == QMetaType::QRect || type == QMetaType::QRectF;
    const auto n = Numbers(value, rectangle ? 4 : 2);
    if (!n)
        return {};
    QVariant made;
    if (rectangle)
        made = QRectF((*n)[0], (*n)[1], (*n)[2], (*n)[3]);
    else if (type == QMetaType::QSize || type == QMetaType::QSizeF)
        made = QSizeF((*n)[0], (*n)[1]);
    else
        made = QPointF((*n)[0], (*n)[1]);
    if (!made.convert(type))
        return {};
    return made;
}

std::optional<QVariant> ToColor(const ScriptVal& value)
{
    const auto n = Numbers(value, 3);
    if (!n)
        return {};
    const auto part = [&](std::size_t i) {
        return i < n->size() ? int(std::lround(std::clamp((*n)[i], 0.0, 255.0))) : 255;
    };
    return QColor(part(0), part(1), part(2), part(3));
}

std::optional<QVariant> ToTexts(const ScriptVal& value)
{
    QStringList texts;
    for (const ScriptVal& element : value.Elements()) {
        if (!element.IsString())
            return {};
        texts.append(QString::fromStdString(element.ToString()));
    }
    return value.IsTable() ? std::optional<QVariant>(texts) : std::nullopt;
}

std::optional<QVariant> ToNumber(const ScriptVal& value, int type)
{
    if (value.IsString() || value.IsTable() || value.IsNil())
        return {};
    if (type == QMetaType::Bool)
        return QVariant(value.ToBool());
    const double number = value.ToNumber();
    const bool real = type == QMetaType::Double || type == QMetaType::Float;
    if (!real && (number != std::trunc(number) || std::fabs(number) > 0x1p53))
        return {};
    QVariant made(number);
    if (!real)
        made = QVariant(qlonglong(number));
    if (!made.convert(type))
        return {};
    return made;
}

} // namespace

ScriptVal FromVariant(const QVariant& value)
{
    switch (int(value.type())) {
    case QMetaType::Bool:
        return ScriptVal(value.toBool());
    case QMetaType::QString:
        return ScriptVal(value.toString().toStdString());
    case QMetaType::QPoint:
    case QMetaType::QPointF:
        return List({value.toPointF().x(), value.toPointF().y()});
    case QMetaType::QSize:
    case QMetaType::QSizeF:
        return List({value.toSizeF().width(), value.toSizeF().height()});
    case QMetaType::QRect:
    case QMetaType::QRectF: {
        const QRectF rect = value.toRectF();
        return List({rect.x(), rect.y(), rect.width(), rect.height()});
    }
    case QMetaType::QColor: {
        const QColor color = value.value<QColor>();
        return List({double(color.red()), double(color.green()), double(color.blue()),
                     double(color.alpha())});
    }
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        ScriptVal list = ScriptVal::MakeTable();
        for (const QVariant& element : value.toList())
            list.Append(FromVariant(element));
        return list;
    }
    default:
        break;
    }
    bool isNumber = false;
    const double number = value.toDouble(&isNumber); // also enumerations
    return isNumber ? ScriptVal(number) : ScriptVal();
}

std::optional<QVariant> ToVariant(const ScriptVal& value, int type)
{
    switch (type) {
    case QMetaType::QString:
        if (!value.IsString())
            return {};
        return QVariant(QString::fromStdString(value.ToString()));
    case QMetaType::QPoint:
    case QMetaType::QPointF:
    case QMetaType::QSize:
    case QMetaType::QSizeF:
    case QMetaType::QRect:
    case QMetaType::QRectF:
        return ToGeometry(value, type);
    case QMetaType::QColor:
        return ToColor(value);
    case QMetaType::QStringList:
        return ToTexts(value);
    default:
        return ToNumber(value, type);
    }
}

std::optional<ScriptVal> ReadQtProperty(const QObject& object, const char* name)
{
    const int index = object.metaObject()->indexOfProperty(name);
    if (index < 0 || !object.metaObject()->property(index).isReadable())
        return {};
    return FromVariant(object.metaObject()->property(index).read(&object));
}

const char* WriteQtProperty(QObject& object, const char* name, const ScriptVal& value)
{
    const int index = object.metaObject()->indexOfProperty(name);
    if (index < 0)
        return "there is no such property";
    const QMetaProperty property = object.metaObject()->property(index);
    if (!property.isWritable())
        return "it can only be read";
    const int type = property.isEnumType() ? int(QMetaType::Int) : property.userType();
    const std::optional<QVariant> variant = ToVariant(value, type);
    return variant && property.write(&object, *variant) ? nullptr : "the value does not fit";
}

} // namespace Marlox
