#pragma once

#include <memory>

#include <QPixmap>
#include <QSize>
#include <QString>

class QSvgRenderer;

namespace Marlox {

/// One vector drawing in SVG Tiny 1.2, and the only place that knows which library draws it.
/// Sizes in device-independent pixels unless said otherwise.
class VectorBitmap {
public:
    /// Largest width or height that a drawing may declare.
    constexpr static int maxExtent = 4096;

    VectorBitmap();
    ~VectorBitmap();
    VectorBitmap(VectorBitmap&&) noexcept;
    VectorBitmap& operator=(VectorBitmap&&) noexcept;

    /// Reads a drawing. False: `error` names line and fault (without the file), nothing is loaded.
    bool Load(const QString& path, QString* error);
    /// The declared size; empty before a drawing was loaded.
    QSize Size() const { return size_; }
    /// Draws onto a transparent pixmap of size times ratio, rounded, that carries the ratio.
    QPixmap Rasterise(double devicePixelRatio) const;

private:
    std::unique_ptr<QSvgRenderer> renderer_;
    QSize size_;
};

/// A stand-in for a drawing that is missing or broken: a plain outlined plate that can be seen on
/// dark and light ground.
QPixmap DrawPlaceholder(QSize size, double devicePixelRatio);
/// A size for the stand-in that keeps a control with this bitmap usable.
QSize PlaceholderSize(const char* name);

} // namespace Marlox
