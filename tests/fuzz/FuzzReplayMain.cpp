// Replays a corpus without libFuzzer: every file given, or found in a folder given, is fed to the
// target once. Inputs that once crashed a reader stay in the corpus, so this run guards against
// their return in every ordinary build.
#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QStringList>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

QStringList inputFiles(const QString &path)
{
    const QDir folder(path);
    if (!folder.exists())
        return { path };
    QStringList files;
    for (const QString &name : folder.entryList(QDir::Files, QDir::Name))
        files.append(folder.filePath(name));
    return files;
}

} // namespace

int main(int argc, char **argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    int replayed = 0;
    for (int i = 1; i < argc; ++i) {
        for (const QString &path : inputFiles(QString::fromLocal8Bit(argv[i]))) {
            QFile file(path);
            if (!file.open(QIODevice::ReadOnly)) {
                std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
                return 1;
            }
            const QByteArray data = file.readAll();
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(data.constData()), size_t(data.size()));
            ++replayed;
        }
    }
    std::printf("replayed %d inputs\n", replayed);
    // A corpus that went missing must not pass as a clean run.
    return replayed > 0 ? 0 : 1;
}
