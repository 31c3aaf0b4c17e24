// core-host [AUTHORITY [PNG]]: a host without Qt that shows an image ad by SDL. Return opens the ad's app,
// Escape closes the ad and then the host. With PNG it saves the ad's first frame there, chooses the ad and
// ends.

#include <VIRLOAdFramework/Bundle.h>
#include <VIRLOAdFramework/MainLoop.h>
#include <VIRLOAdFramework/NetworkFlags.h>
#include <VIRLOAdFramework/URLSession.h>
#include <VIRLOAdFramework/VIRLOAdController.h>
#include <VIRLOAdFramework/VIRLOAdReports.h>
#include <VIRLOAdFramework/VIRLOAdScreens.h>
#include <VIRLOAdFramework/VIRLOAdViewController.h>
#include <VIRLOAdFramework/VIRLOAdvertisement.h>

#include <SDL.h>
#include <SDL_image.h>
#include <SDL_ttf.h>

#include <cstdio>

using virlo::MainLoop;
using Surface = std::unique_ptr<SDL_Surface, decltype(&SDL_FreeSurface)>;

namespace
{
struct ImageScreen : VIRLOAdViewController {
    std::weak_ptr<VIRLOAdServerAPI> api;
    std::shared_ptr<VIRLOAdItem> item;
    Surface image{nullptr, &SDL_FreeSurface};
};

/// Makes screens for image ads; any other ad gives neither screen nor error.
class ImageScreens : public VIRLOAdScreens
{
public:
    Abandon screenForAdvertisementWithCompletion(std::shared_ptr<VIRLOAdvertisement> advertisement,
                                                 std::shared_ptr<VIRLOAdServerAPI> api,
                                                 Completion completion) override
    {
        const auto items = advertisement->items();
        const auto image = items.empty() ? std::nullopt : items.front()->backgroundURL();
        if (advertisement->type() != VIRLOAdvertisementType::Engagement || !image) {
            completion(nullptr, std::nullopt);
            return {};
        }
        const auto screen = std::make_shared<ImageScreen>();
        screen->api = api;
        screen->item = items.front();
        const auto decode = [screen, completion](const std::string& data, const auto&, const auto&) {
            SDL_RWops* const bytes = SDL_RWFromConstMem(data.data(), static_cast<int>(data.size()));
            screen->image.reset(bytes ? IMG_Load_RW(bytes, 1) : nullptr);
            if (!screen->image)
                return completion(nullptr, virlo::Error{"com.example.core-host.image", 1});
            completion(screen, std::nullopt);
        };
        m_session->dataTask({.url = *image}, decode)->resume();
        return {};
    }

private:
    const std::shared_ptr<virlo::URLSession> m_session =
        virlo::URLSession::sessionWithConfiguration(virlo::URLSessionConfiguration::defaultConfiguration());
};

SDL_Color colorOf(const virlo::Color& color)
{
    const auto byte = [](float part) { return static_cast<Uint8>(SDL_clamp(part, 0.0F, 1.0F) * 255.0F); };
    return {byte(color.red), byte(color.green), byte(color.blue), 255};
}

void draw(SDL_Surface* window, TTF_Font* font, const ImageScreen& ad)
{
    SDL_BlitScaled(ad.image.get(), nullptr, window, nullptr);
    const auto button = ad.item->actionButton();
    if (!button || !button->text())
        return;
    const Surface text(TTF_RenderUTF8_Blended(font, button->text()->c_str(), colorOf(button->textColor())),
                       &SDL_FreeSurface);
    if (!text)
        return;
    const int x = static_cast<int>(button->xPosition());
    const int y = static_cast<int>(button->yPosition());
    const SDL_Rect frame{x, y, text->w + 96, text->h + 48};
    const SDL_Color back = colorOf(button->backgroundColor());
    SDL_FillRect(window, &frame, SDL_MapRGB(window->format, back.r, back.g, back.b));
    SDL_Rect inner{x + 48, y + 24, 0, 0};
    SDL_BlitSurface(text.get(), nullptr, window, &inner);
}
} // namespace

int main(int count, char** arguments)
{
    SDL_Init(SDL_INIT_VIDEO);
    TTF_Init();
    SDL_Window* const window = SDL_CreateWindow("Core host", 0, 0, 1920, 1080, 0);
    TTF_Font* const font = TTF_OpenFont("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", 40);
    if (!window || !font)
        return std::fprintf(stderr, "core-host: %s\n", SDL_GetError()), 1;

    virlo::Bundle::setMainBundle("com.example.core-host", "Core Host", "1.0");
    virlo::URLSessionConfiguration::setDefaultTrustedAuthoritiesFile(count > 1 ? arguments[1] : "");
    // This ad server is on the loopback: no other route is needed.
    virlo::NetworkFlagsSource::setShared(virlo::makeFixedNetworkFlags(virlo::NetworkFlagReachable).release());
    VIRLOAdScreens::install(new ImageScreens); // lives as long as the process

    bool running = true;
    std::shared_ptr<ImageScreen> shown;
    const auto choose = [&] {
        VIRLOAdReports::reportClick(shown->api.lock(), shown->item, [&](const auto& page) {
            std::printf("open %s\n", page ? page->absoluteString().c_str() : "nothing");
            MainLoop::shared().post([&] { running = count < 3; });
        });
    };
    const auto show = [&](const std::shared_ptr<VIRLOAdViewController>& screen) {
        shown = std::dynamic_pointer_cast<ImageScreen>(screen);
        if (!shown)
            return;
        draw(SDL_GetWindowSurface(window), font, *shown);
        SDL_UpdateWindowSurface(window);
        VIRLOAdReports::reportImpression(shown->api.lock(), shown->item);
        if (count > 2 && IMG_SavePNG(SDL_GetWindowSurface(window), arguments[2]) == 0)
            choose();
    };
    const auto ads = VIRLOAdController::sharedAdController();
    ads->startWithAppIdentifier("core-host");
    ads->adViewControllerForPlacementWithCompletion(
        "AppLaunch", [&](const auto& screen, const virlo::OptionalError& error) {
            std::puts(screen ? "ready" : error ? virlo::describe(*error).c_str() : "no image ad");
            MainLoop::shared().post([&, screen] { show(screen); });
        });
    while (running) {
        for (SDL_Event event; SDL_PollEvent(&event) != 0;) {
            const auto key = event.type == SDL_KEYDOWN ? event.key.keysym.sym : SDLK_UNKNOWN;
            if (key == SDLK_RETURN && shown)
                choose();
            running = running && event.type != SDL_QUIT && (key != SDLK_ESCAPE || shown);
            if (key == SDLK_ESCAPE && shown) {
                shown.reset();
                SDL_FillRect(SDL_GetWindowSurface(window), nullptr, 0);
                SDL_UpdateWindowSurface(window);
                ads->checkAvailableCurrencyAfterTimeInterval(5); // a reward may be due
            }
        }
        // The library's work for this thread, and the wait for the next events.
        MainLoop::shared().runUntil([] { return false; }, virlo::Seconds(1.0 / 60));
    }
    ads->applicationWillTerminate(); // the closing request has half a second
    MainLoop::shared().runUntil([] { return false; }, virlo::Seconds(0.5));
}
