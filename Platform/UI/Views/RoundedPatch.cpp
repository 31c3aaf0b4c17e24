#include "RoundedPatch.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace virlo
{

namespace
{

/// One pass of a running mean over lines of `length` samples, `stride` apart.
void meanPass(std::vector<float>& samples, int lines, int lineStride, int length, int stride, int radius)
{
    std::vector<float> line(static_cast<std::size_t>(length));
    for (int l = 0; l < lines; ++l) {
        float* first = samples.data() + static_cast<std::ptrdiff_t>(l) * lineStride;
        const auto at = [&](int i) {
            return i < 0 || i >= length ? 0.0F : first[static_cast<std::ptrdiff_t>(i) * stride];
        };
        float sum = 0;
        for (int i = -radius; i <= radius; ++i)
            sum += at(i);
        for (int i = 0; i < length; ++i) {
            line[static_cast<std::size_t>(i)] = sum / static_cast<float>(2 * radius + 1);
            sum += at(i + radius + 1) - at(i - radius);
        }
        for (int i = 0; i < length; ++i)
            first[static_cast<std::ptrdiff_t>(i) * stride] = line[static_cast<std::size_t>(i)];
    }
}

/// Three running means approximate a Gaussian to a few percent.
void blurAlpha(QImage& image, double deviation)
{
    const int radius =
        std::max(1, static_cast<int>(std::lround((std::sqrt(4 * deviation * deviation + 1) - 1) / 2)));
    const int width = image.width();
    const int height = image.height();
    std::vector<float> alpha(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const uchar* line = image.constScanLine(y);
        std::copy(line, line + width, alpha.begin() + static_cast<std::ptrdiff_t>(y) * width);
    }
    for (int pass = 0; pass < 3; ++pass) {
        meanPass(alpha, height, width, width, 1, radius);
        meanPass(alpha, width, 1, height, width, radius);
    }
    for (int y = 0; y < height; ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < width; ++x)
            line[x] = static_cast<uchar>(
                std::lround(std::clamp(alpha[static_cast<std::size_t>(y) * width + x], 0.0F, 255.0F)));
    }
}

QImage tinted(const QImage& alpha, QRgb color)
{
    QImage image(alpha.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < alpha.height(); ++y) {
        const uchar* from = alpha.constScanLine(y);
        auto* to = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < alpha.width(); ++x)
            to[x] =
                qPremultiply(qRgba(qRed(color), qGreen(color), qBlue(color), qAlpha(color) * from[x] / 255));
    }
    return image;
}

} // namespace

RoundedPatch::~RoundedPatch() = default;

RoundedPatch::Patch RoundedPatch::draw(const RoundedShape& shape)
{
    const double corner = std::min({shape.corner, shape.size.width() / 2, shape.size.height() / 2});
    Patch patch;
    patch.outset = std::ceil(3 * shape.blur);
    patch.inset = std::ceil(std::max(corner, patch.outset)) + 1;
    QSizeF size(2 * patch.inset + 1, 2 * patch.inset + 1);
    const bool isSmaller = shape.size.width() < size.width() || shape.size.height() < size.height();
    const bool isHardlyLarger =
        shape.size.width() < 1.5 * size.width() && shape.size.height() < 1.5 * size.height();
    if (isSmaller || isHardlyLarger) {
        size = shape.size;
        patch.inset = 0;
    }
    const QSize pixels(static_cast<int>(std::ceil(size.width() + 2 * patch.outset)),
                       static_cast<int>(std::ceil(size.height() + 2 * patch.outset)));
    QImage alpha(pixels, QImage::Format_Alpha8);
    alpha.fill(0);
    {
        QPainter painter(&alpha);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Qt::black);
        painter.drawRoundedRect(QRectF(QPointF(patch.outset, patch.outset), size), corner, corner);
    }
    if (shape.blur > 0)
        blurAlpha(alpha, shape.blur);
    patch.image = tinted(alpha, shape.color);
    return patch;
}

std::shared_ptr<const RoundedPatch::Patch> RoundedPatch::patchOf(const RoundedShape& shape)
{
    thread_local std::vector<std::pair<RoundedShape, std::weak_ptr<const Patch>>> known;
    std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
    const auto found =
        std::find_if(known.begin(), known.end(), [&](const auto& entry) { return entry.first == shape; });
    if (found != known.end())
        return found->second.lock();
    auto patch = std::make_shared<const Patch>(draw(shape));
    known.emplace_back(shape, patch);
    return patch;
}

void RoundedPatch::makePieces(int count, QQuickWindow& window)
{
    while (static_cast<int>(m_pieces.size()) > count) {
        delete m_pieces.back();
        m_pieces.pop_back();
    }
    for (QSGImageNode* piece : m_pieces)
        piece->setTexture(m_texture.get());
    while (static_cast<int>(m_pieces.size()) < count) {
        QSGImageNode* piece = window.createImageNode();
        piece->setTexture(m_texture.get());
        piece->setOwnsTexture(false);
        piece->setFiltering(QSGTexture::Linear);
        appendChildNode(piece);
        m_pieces.push_back(piece);
    }
}

void RoundedPatch::update(const RoundedShape& shape, QPointF origin, QQuickWindow& window)
{
    if (m_texture && shape == m_shape && origin == m_origin)
        return;
    const bool onlyResized = m_texture && shape.color == m_shape.color && shape.corner == m_shape.corner &&
                             shape.blur == m_shape.blur && m_patch->inset > 0 &&
                             std::min(shape.size.width(), shape.size.height()) >= 2 * m_patch->inset + 1;
    const bool same = m_texture && shape == m_shape;
    if (!same && !onlyResized) {
        m_patch = patchOf(shape);
        const std::unique_ptr<QSGTexture> before = std::move(m_texture);
        m_texture.reset(window.createTextureFromImage(m_patch->image, QQuickWindow::TextureHasAlphaChannel));
        makePieces(m_patch->inset > 0 ? 9 : 1, window);
    }
    m_shape = shape;
    m_origin = origin;
    place(shape, origin);
}

void RoundedPatch::place(const RoundedShape& shape, QPointF origin)
{
    const QSizeF image = m_patch->image.size();
    const QRectF whole =
        QRectF(origin, shape.size)
            .marginsAdded(QMarginsF(m_patch->outset, m_patch->outset, m_patch->outset, m_patch->outset));
    if (m_pieces.size() == 1) {
        m_pieces.front()->setRect(QRectF(whole.topLeft(), image));
        m_pieces.front()->setSourceRect(QRectF(QPointF(), image));
        return;
    }
    const double edge = m_patch->outset + m_patch->inset;
    const std::array<double, 4> sourceX{0, edge, image.width() - edge, image.width()};
    const std::array<double, 4> sourceY{0, edge, image.height() - edge, image.height()};
    const std::array<double, 4> targetX{whole.left(), whole.left() + edge, whole.right() - edge,
                                        whole.right()};
    const std::array<double, 4> targetY{whole.top(), whole.top() + edge, whole.bottom() - edge,
                                        whole.bottom()};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            QSGImageNode* piece = m_pieces[row * 3 + column];
            piece->setSourceRect(QRectF(QPointF(sourceX[column], sourceY[row]),
                                        QPointF(sourceX[column + 1], sourceY[row + 1])));
            piece->setRect(QRectF(QPointF(targetX[column], targetY[row]),
                                  QPointF(targetX[column + 1], targetY[row + 1])));
        }
    }
}

} // namespace virlo
