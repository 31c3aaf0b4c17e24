#pragma once

#include <QSize>

#include <cstddef>
#include <functional>
#include <memory>
#include <vector>

class VIRLOAdItem;
class VIRLOAdServerApiImageDownloader;

namespace virlo
{
class DispatchGroup;
class Image;
} // namespace virlo

/// The decoded screenshots of an item: at any time those of the focused element and of its neighbours, two on
/// either side, however many the item has. They are decoded by workers to the size shown.
///
/// What the store does not have is downloaded: once in the preload, and once again for a screenshot that is
/// to be shown; one that fails then stays away. Held by the screen; main thread, but for `make` and
/// `preload`.
class VIRLOAdInterstitialScreenshots : public std::enable_shared_from_this<VIRLOAdInterstitialScreenshots>
{
public:
    /// With the focused one at most `mostHeld` are decoded, and `mostLoading` on the way to it: five images
    /// of at most 1680 x 618 pixels, 21 MB, at one pixel to a point. None is larger than its original.
    static constexpr std::size_t heldOnEitherSide = 2;
    static constexpr std::size_t mostHeld = 2 * heldOnEitherSide + 1;
    static constexpr std::size_t mostLoading = 2;
    /// In points.
    static constexpr QSize elementSize{1400, 515};
    static constexpr QSize focusedSize{1400, 618};

    /// An image to show at an index, or null for one to let go of.
    using Show = std::function<void(std::size_t index, std::shared_ptr<const virlo::Image> image)>;

    [[nodiscard]] static std::shared_ptr<VIRLOAdInterstitialScreenshots>
    make(std::shared_ptr<VIRLOAdItem> item, std::shared_ptr<VIRLOAdServerApiImageDownloader> downloader);

    [[nodiscard]] std::size_t count() const noexcept { return m_screenshots.size(); }

    /// Downloads all that the store does not have, and decodes those of the first focus. The group is left
    /// once nothing of that is under way. Once, before anything else.
    void preload(virlo::DispatchGroup group);

    /// Shows what is there and, from now on, what comes.
    void start(Show show);
    /// Lets go of everything; nothing is shown any more.
    void stop();
    void setFocused(std::size_t index);

private:
    using ImagePointer = std::shared_ptr<const virlo::Image>;
    enum class State { Downloading, Idle, Loading, Missing };

    struct Screenshot {
        State state = State::Idle;
        ImagePointer image;
    };

    VIRLOAdInterstitialScreenshots(std::shared_ptr<VIRLOAdItem> item,
                                   std::shared_ptr<VIRLOAdServerApiImageDownloader> downloader);
    [[nodiscard]] bool isNear(std::size_t index) const;
    void preloadOne(std::size_t index, bool isNear, virlo::DispatchGroup group);
    void update();
    void load(std::size_t index);
    void didLoad(std::size_t index, const ImagePointer& image);

    const std::shared_ptr<VIRLOAdItem> m_item;
    const std::shared_ptr<VIRLOAdServerApiImageDownloader> m_downloader;
    std::vector<Screenshot> m_screenshots;
    std::size_t m_focused;
    std::size_t m_loading = 0;
    Show m_show;
};
