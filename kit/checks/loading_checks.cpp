#include "kit/checks/all_checks.h"
#include "kit/checks/good_run.h"
#include "kit/plugin/elf_file.h"
#include "kit/plugin/exported_name.h"

#include "drivers/qt/qt_lines.h"

#include <QPointer>
#include <QStringList>
#include <QThread>

#include <functional>

namespace kit
{

namespace
{

QString text(const char *latin1)
{
    return QLatin1String(latin1);
}

void checkInterface(Trial &trial)
{
    QObject *const object = trial.plugin().object();
    if (object == nullptr) {
        trial.report(text("Qt's loader loads the file"), trial.plugin().errorString());
        return;
    }
    DriverInterface *const driver = qobject_cast<DriverInterface *>(object);
    if (driver == nullptr) {
        trial.report(QLatin1String("an object with the interface ") +
                         text(qobject_interface_iid<DriverInterface *>()),
                     QLatin1String("an object of class ") + text(object->metaObject()->className()) +
                         text(" without it"));
        return;
    }
    if (driver->getThisObject() != object)
        trial.report(text("getThisObject() gives the object that the interface belongs to"),
                     text("another pointer"));
}

void checkCreateDriver(Trial &trial)
{
    auto *const create = trial.plugin().entryPoint<DriverInterface *()>("CreateDriver");
    if (create == nullptr) {
        trial.report(text("the file has the entry point CreateDriver"), text("it has not"));
        return;
    }
    DriverInterface *const first = create();
    DriverInterface *const second = create();
    if (first == nullptr || second == nullptr || first->name() != trial.plugin().driver()->name()) {
        trial.report(text("CreateDriver gives a driver, the same as Qt's loader"), text("none"));
    } else if (first == second || first == trial.plugin().driver()) {
        trial.report(text("each call of CreateDriver makes an object of its own, which the caller deletes"),
                     text("the same object again"));
    } else {
        delete first;
        delete second;
    }
}

// A host that deletes the object and asks again gets a fresh one.
void checkOneInstance(Trial &trial)
{
    auto *const instance = trial.plugin().entryPoint<QObject *()>("qt_plugin_instance");
    if (instance == nullptr) {
        trial.report(text("the file has the entry point qt_plugin_instance"), text("it has not"));
        return;
    }
    const QPointer<QObject> object = instance();
    if (object.isNull() || instance() != object.data()) {
        trial.report(text("qt_plugin_instance gives the same object until it is deleted"),
                     text("another one, or none"));
        return;
    }
    object->setObjectName(text("deleted"));
    delete object.data();
    QObject *const fresh = instance();
    if (fresh == nullptr || fresh->objectName() == text("deleted") ||
        qobject_cast<DriverInterface *>(fresh) == nullptr)
        trial.report(text("after the object is deleted a fresh driver"), text("no driver"));
}

void checkEntryPoints(Trial &trial)
{
    if (trial.driver() == nullptr)
        return;
    checkCreateDriver(trial);
    checkOneInstance(trial);
}

// What the loader of Qt 4.8 expects to find, line by line.
bool isVerificationText(const QString &said)
{
    const QStringList lines = said.split(QLatin1Char('\n'));
    return lines.size() == 4 && lines.at(0) == text("pattern=QT_PLUGIN_VERIFICATION_DATA") &&
           lines.at(1).startsWith(text("version=4.8.")) &&
           (lines.at(2) == text("debug=false") || lines.at(2) == text("debug=true")) &&
           lines.at(3).startsWith(text("buildkey=")) && lines.at(3) != text("buildkey=");
}

void checkVerificationText(Trial &trial)
{
    auto *const query = trial.plugin().entryPoint<const char *()>("qt_plugin_query_verification_data");
    if (query == nullptr) {
        trial.report(text("the file has the entry point qt_plugin_query_verification_data"),
                     text("it has not"));
        return;
    }
    const QByteArray said(query());
    const QString shown = QString::fromLatin1(said.constData());
    if (!isVerificationText(shown))
        trial.report(text("the text that a loader of Qt 4.8 compares: pattern, version, debug, buildkey"),
                     QLatin1Char('"') + shown + QLatin1Char('"'));
    if (ElfFile(trial.plugin().file()).section(".qtplugin") != QByteArray(said.constData(), sizeOf(said) + 1))
        trial.report(text("the section .qtplugin of the file has the same text, closed by a zero byte"),
                     text("another text, or no such section"));
}

void checkExports(Trial &trial)
{
    const ElfFile file(trial.plugin().file());
    if (!file.isValid()) {
        trial.report(text("a shared library of this machine"), text("none"));
        return;
    }
    const QList<ElfFile::Symbol> exported = file.exported();
    for (int i = 0; i < exported.size(); ++i)
        if (!isEntryPoint(exported.at(i).name) && !isOfTheSystem(exported.at(i)))
            trial.report(text("nothing is exported but the entry points"),
                         QString::fromLatin1(exported.at(i).name.constData()));
}

void expectSuccess(Trial &trial, DriverLink &link, const GoodRun &run, const QString &expected)
{
    const Outcome outcome = link.runOnOpenChannel(run.sample);
    if (!hasSucceeded(run.sample, outcome))
        trial.report(findingOf(run.sample, outcome, expected));
}

void checkSeveralObjects(Trial &trial)
{
    if (trial.driver() == nullptr)
        return;
    const std::unique_ptr<DriverInterface> first(trial.plugin().create());
    const std::unique_ptr<DriverInterface> second(trial.plugin().create());
    if (!first || !second) {
        trial.skip(text("CreateDriver does not make two objects: see loading.entry-points"));
        return;
    }
    DriverLink firstLink(*first, trial.subject());
    DriverLink secondLink(*second, trial.subject());
    for (const GoodRun &run : goodRuns(trial, firstLink)) {
        expectSuccess(trial, secondLink, run, text("success on one object beside another"));
        const Outcome failed = firstLink.runWith(silence(0), run.sample);
        if (second->hasError())
            trial.report(findingOf(run.sample, failed, text("another object has no error from it"),
                                   QLatin1String("it has one: ") + second->getLastError()));
        expectSuccess(trial, secondLink, run, text("success on one object after a failure on another"));
        if (!first->hasError() || first->getLastError() != failed.text)
            trial.report(findingOf(run.sample, failed,
                                   text("the failure of one object outlives the success of another"),
                                   QLatin1String("its text is now: ") + first->getLastError()));
        expectSuccess(trial, firstLink, run, text("success on the object that failed before"));
    }
}

// One life of the file in the process.
bool runOnce(Trial &trial)
{
    Plugin plugin(trial.settings().plugin);
    DriverInterface *const driver = plugin.driver();
    if (driver == nullptr) {
        trial.report(text("a file that was unloaded can be loaded again"), plugin.errorString());
        return false;
    }
    {
        DriverLink link(*driver, trial.subject());
        if (goodRuns(trial, link).empty())
            return false;
    }
    delete plugin.object();
    plugin.unload();
    // Whoever left the address of a function behind is called here.
    qDebug("unloaded");
    return true;
}

void checkReload(Trial &trial)
{
    const int lives = 3;
    for (int i = 0; i < lives; ++i)
        if (!runOnce(trial))
            return;
}

class Worker : public QThread
{
public:
    explicit Worker(const std::function<void()> &work) : m_work(work) {}

protected:
    void run() override { m_work(); }

private:
    std::function<void()> m_work;
};

// In a thread of its own, which is over afterwards. A host that makes drivers in threads seeds each of them.
void inThread(uint seed, const std::function<void()> &work)
{
    Worker worker([seed, &work]() {
        seedRandomNumbers(seed);
        work();
    });
    worker.start();
    worker.wait();
}

void checkThreads(Trial &trial)
{
    DriverInterface *const driver = trial.driver();
    if (driver == nullptr)
        return;
    DriverLink link(*driver, trial.subject());
    GoodRuns runs;
    inThread(1, [&]() { runs = goodRuns(trial, link); });
    for (const GoodRun &run : runs) {
        inThread(2, [&]() { expectSuccess(trial, link, run, text("success in another thread")); });
        expectSuccess(trial, link, run, text("success back in the first thread"));
    }
    std::unique_ptr<DriverInterface> made;
    inThread(3, [&]() { made = trial.plugin().create(); });
    if (!made || runs.empty())
        return;
    DriverLink madeElsewhere(*made, trial.subject());
    expectSuccess(trial, madeElsewhere, runs.front(), text("success with an object that a thread made"));
}

} // namespace

Checks loadingChecks()
{
    return {
        {"loading.interface", "A host finds the driver by its interface in the object of Qt's loader.",
         checkInterface},
        {"loading.entry-points",
         "Qt's loader gives one object for each process, CreateDriver a new one with each call.",
         checkEntryPoints},
        {"loading.verification-text",
         "The loader of Qt 4.8 compares a text in the file before it loads anything.", checkVerificationText},
        {"loading.exports",
         "Drivers with their own copies of the tools live in one process, so each keeps its names to itself.",
         checkExports},
        {"loading.several-objects",
         "A host has an object for each link, and none knows of another's failures.", checkSeveralObjects},
        {"loading.reload", "A host may unload a file and load it again, and nothing may lead back into it.",
         checkReload},
        {"loading.threads", "A host may call an object from one thread and later from another.",
         checkThreads},
    };
}

} // namespace kit
