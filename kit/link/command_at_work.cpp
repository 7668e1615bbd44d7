#include "kit/link/command_at_work.h"

#include "drivers/qt/qt_lines.h"

#include <algorithm>
#include <sys/mman.h>

namespace kit
{

namespace
{

const int LongestText = 64;

// A text that takes no memory of its own.
struct NotedText {
    int size;
    QChar characters[LongestText];

    void set(const QString &text)
    {
        size = std::min(sizeOf(text), LongestText);
        std::copy(text.constData(), text.constData() + size, characters);
    }
    QString text() const { return QString(characters, size); }
};

struct Note {
    bool isThere;
    bool isWrite;
    int dataType;
    int count;
    NotedText address;
    NotedText trouble;
};

Note *shared = nullptr;

} // namespace

void CommandAtWork::share()
{
    if (shared != nullptr)
        return;
    void *const place =
        mmap(nullptr, sizeof(Note), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (place != MAP_FAILED)
        shared = static_cast<Note *>(place);
}

void CommandAtWork::clear()
{
    if (shared != nullptr)
        shared->isThere = false;
}

void CommandAtWork::note(const Sample &sample, const QString &trouble)
{
    if (shared == nullptr)
        return;
    shared->isThere = true;
    shared->isWrite = sample.isWrite;
    shared->dataType = sample.command.dataType;
    shared->count = sample.command.count;
    shared->address.set(sample.command.address);
    shared->trouble.set(trouble);
}

QString CommandAtWork::text()
{
    if (shared == nullptr || !shared->isThere)
        return QString();
    const QString command = QLatin1String(shared->isWrite ? "write " : "read ") +
                            textOf(makeCommand(shared->dataType, shared->address.text(), shared->count));
    const QString trouble = shared->trouble.text();
    return trouble.isEmpty() ? command : command + QLatin1String(", with ") + trouble;
}

} // namespace kit
