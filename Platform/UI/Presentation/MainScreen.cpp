#include "MainScreen.h"

#include "WindowPresentation.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <atomic>

namespace virlo
{

namespace
{

constexpr double leastScale = 1;
constexpr double mostScale = 4;

std::atomic<double> currentScale{leastScale};

double scaleOf(QSize size, double pixelRatio)
{
    return pixelRatio * std::min(size.width() / double{WindowPresentation::canvasWidth},
                                 size.height() / double{WindowPresentation::canvasHeight});
}

} // namespace

double MainScreen::scale()
{
    return currentScale;
}

void MainScreen::refresh()
{
    double largest = 0;
    for (const QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible())
            largest = std::max(largest, scaleOf(window->size(), window->devicePixelRatio()));
    }
    const QScreen* const screen = QGuiApplication::primaryScreen();
    if (largest == 0 && screen != nullptr)
        largest = scaleOf(screen->size(), screen->devicePixelRatio());
    currentScale = std::clamp(largest, leastScale, mostScale);
}

} // namespace virlo
