#include "Benchmarks.h"
#include "TestImages.h"

#include "VIRLOAdFullscreenImageStore.h"
#include "VIRLOAdFullscreenViewController.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdPresenter.h"
#include "VIRLOAdScreens.h"
#include "VIRLOAdServerAPI.h"
#include "VIRLOAdvertisement.h"
#include "VIRLOFormTextField.h"
#include "VIRLOFormViewController.h"

#include <QEventLoop>
#include <QKeyEvent>
#include <QQuickWindow>
#include <QTimer>

#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>

namespace
{

using Clock = std::chrono::steady_clock;
using Screen = std::shared_ptr<VIRLOAdFullscreenViewController>;

constexpr int rounds = 15;
constexpr std::chrono::milliseconds longestWait{10'000};

/// Proportional memory of this process.
double pssMiB()
{
    std::ifstream rollup("/proc/self/smaps_rollup");
    for (std::string word; rollup >> word;) {
        double kibibytes = 0;
        if (word == "Pss:" && rollup >> kibibytes)
            return kibibytes / 1024;
    }
    throw std::runtime_error("the kernel does not tell the memory");
}

/// A window whose frames are waited for.
class FormWindow : public QQuickWindow
{
public:
    /// Milliseconds from the key's release on to the first frame for which `shows` is true.
    double press(Qt::Key key, const std::function<bool()>& shows)
    {
        send(QEvent::KeyPress, key);
        const auto start = Clock::now();
        send(QEvent::KeyRelease, key);
        return std::chrono::duration<double, std::milli>(awaitFrame(shows) - start).count();
    }

    Clock::time_point awaitFrame(const std::function<bool()>& shows)
    {
        QEventLoop loop;
        Clock::time_point painted;
        const auto connection = connect(this, &QQuickWindow::frameSwapped, &loop, [&] {
            painted = Clock::now();
            if (shows())
                loop.quit();
        });
        QTimer::singleShot(longestWait, &loop, [&loop] { loop.exit(1); });
        const bool failed = loop.exec() != 0;
        disconnect(connection);
        if (failed)
            throw std::runtime_error("the form does not show what was waited for");
        return painted;
    }

private:
    void send(QEvent::Type type, Qt::Key key)
    {
        QKeyEvent event(type, key, Qt::NoModifier);
        QCoreApplication::sendEvent(this, &event);
    }
};

void restFor(std::chrono::milliseconds time)
{
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

Screen readyScreen(const std::shared_ptr<VIRLOAdvertisement>& ad,
                   const std::shared_ptr<VIRLOAdServerAPI>& api)
{
    QEventLoop loop;
    Screen ready;
    VIRLOAdScreens::installed()->screenForAdvertisementWithCompletion(
        ad, api, [&](std::shared_ptr<VIRLOAdViewController> screen, const virlo::OptionalError&) {
            QMetaObject::invokeMethod(
                &loop,
                [&, screen = std::move(screen)] {
                    ready = std::dynamic_pointer_cast<VIRLOAdFullscreenViewController>(screen);
                    loop.quit();
                },
                Qt::QueuedConnection);
        });
    loop.exec();
    if (!ready)
        throw std::runtime_error("there is no screen");
    return ready;
}

} // namespace

/// The contact form over a fullscreen ad in a window of 1920×1080 on Qt Quick's software backend.
void benchForm(Results& results)
{
    const auto api = VIRLOAdServerAPI::initWithBaseURL(*virlo::URL::fromString("https://localhost:1"));
    const auto ad = VIRLOAdvertisement::initWithDictionary(
        {{"txid", "bench"},
         {"type", "engagement"},
         {"ads",
          {{{"cid", "bench-form"},
            {"description", "Three nights in a cabin of your own above the clouds."},
            {"actionButton", {{"actionType", "CLICK_TO_EMAIL"}, {"text", "Ask"}}}}}}});
    VIRLOAdFullscreenImageStore::sharedStore()->setImageForItem(adImage(1), *ad->items().front());
    FormWindow window;
    window.resize(1920, 1080);
    window.show();
    const Screen screen = readyScreen(ad, api);
    VIRLOAdPresenter::present(screen, &window);
    window.awaitFrame([&] { return screen->preferredFocusedView() != nullptr; });
    restFor(std::chrono::milliseconds(3000)); // the ad stands still
    const double alone = pssMiB();

    const auto form = [&] { return screen->formViewController(); };
    const auto text = [&] {
        return form()->view().property("formTextInputView").value<VIRLOFormTextField*>()->text();
    };
    std::vector<double> opened;
    std::vector<double> keyboard;
    std::vector<double> letter;
    double open = 0;
    for (int round = 0; round < roundsOf(rounds); ++round) {
        opened.push_back(
            window.press(Qt::Key_Return, [&] { return form() && form()->view().opacity() > 0; }));
        restFor(std::chrono::milliseconds(1000));
        keyboard.push_back(window.press(Qt::Key_Return, [] { return true; }));
        restFor(std::chrono::milliseconds(300));
        const auto before = text().size();
        letter.push_back(window.press(Qt::Key_Return, [&] { return text().size() > before; }));
        restFor(std::chrono::milliseconds(300));
        if (round == 0)
            open = pssMiB();
        window.press(Qt::Key_Escape, [] { return true; });
        window.press(Qt::Key_Escape, [&] { return !form(); });
        restFor(std::chrono::milliseconds(200));
    }
    results.addLimit("Select on an ad's button to the contact form's first frame", median(opened), "ms", 50);
    results.addLimit("Select on the form's field to the keyboard's first frame", median(keyboard), "ms", 50);
    results.addLimit("Select on a key of the keyboard to its letter shown", median(letter), "ms", 50);
    results.addLimit("memory (PSS) of form and keyboard over that of the ad alone", open - alone, "MiB", 6);
    VIRLOAdPresenter::dismiss(screen);
}
