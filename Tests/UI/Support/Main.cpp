#include "Application.h"
#include "LogCapture.h"
#include "SystemLog.h"

#include <QGuiApplication>
#include <QString>

namespace
{

/// Qt's warnings go where the log watch sees them: one that no test announced fails the test.
void toLog(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        virlo::systemLog("[Qt] " + message.toStdString());
}

void setWhereUnset(const char* name, const char* value)
{
    if (qEnvironmentVariableIsEmpty(name))
        qputenv(name, value);
}

} // namespace

int main(int argc, char** argv)
{
    setWhereUnset("QT_QPA_PLATFORM", "offscreen");
    setWhereUnset("QT_QUICK_BACKEND", "software");
    qInstallMessageHandler(toLog);
    virlo::Application::start();
    const QGuiApplication application(argc, argv);
    return virlo::test::runAllTests(argc, argv);
}
