#include "LiveView.h"

#include <QGenericPlugin>

/// `HOST -plugin virlostream:port=8445:page=8444`: port is this view's own, page the inspector page's. Those
/// are the defaults.
class StreamPlugin : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "virlostream.json")

public:
    QObject* create(const QString& key, const QString& specification) override
    {
        if (key.compare(QLatin1String("virlostream"), Qt::CaseInsensitive) != 0)
            return nullptr;
        std::uint16_t port = 8445;
        std::uint16_t page = 8444;
        for (const auto& word : specification.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
            if (word.startsWith(QLatin1String("port=")))
                port = word.mid(5).toUShort();
            else if (word.startsWith(QLatin1String("page=")))
                page = word.mid(5).toUShort();
            else
                qWarning("virlostream: unknown word \"%s\"", qPrintable(word));
        }
        return new LiveView(port, page);
    }
};

#include "StreamPlugin.moc"
