#include "VIRLOFrameworkImages.h"

#include "Convert.h"
#include "GlobalQueue.h"
#include "Image.h"
#include "VIRLOConstans.h"

#include <QPainter>

#include <map>
#include <mutex>
#include <utility>

std::shared_ptr<const virlo::Image> VIRLOFrameworkImages::imageNamed(const std::string& name)
{
    static std::mutex mutex;
    static auto& images = *new std::map<std::string, std::shared_ptr<const virlo::Image>>;
    const std::lock_guard lock(mutex);
    const auto found = images.find(name);
    if (found != images.end())
        return found->second;
    // The bundle's resources are compiled in under its identifier.
    auto image = virlo::Image::named(":/" + std::string(VIRLOAdFrameworkBundleIdentifier) + "/" + name);
    if (image)
        images.emplace(name, image);
    return image;
}

std::shared_ptr<const virlo::Image> VIRLOFrameworkImages::imageNamedInColor(const std::string& name,
                                                                            const virlo::Color& color)
{
    const auto shape = imageNamed(name);
    if (!shape)
        return nullptr;
    QImage image = shape->qImage();
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), virlo::toQColor(color));
    painter.end();
    return virlo::Image::fromQImage(std::move(image));
}

void VIRLOFrameworkImages::warmUp()
{
    virlo::GlobalQueue::background().async([] {
        for (const char* name :
             {"AdGridMail.png", "AdGridPhone.png", "AdGridPlay.png", "AdGridSMS.png", "countdown_halo.png",
              "countdown_halo_light.png", "fullscreen_close.png", "fullscreen_close_dark.png",
              "icon_email.png", "icon_phone.png", "icon_sms.png"})
            static_cast<void>(imageNamed(name));
    });
}
