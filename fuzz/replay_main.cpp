// Runs a fuzz target's entry point on files, without libFuzzer: the seed
// corpus and the inputs of fixed crashes, replayed by the ordinary test
// suite with any compiler. Arguments are files or folders (every file in a
// folder, in name order). Exit status 0 when every input ran; a finding
// aborts, as under the fuzzer.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <cstdio>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    LLVMFuzzerInitialize(&argc, &argv);
    QStringList files;
    for (int i = 1; i < argc; ++i) {
        const QString path = QString::fromLocal8Bit(argv[i]);
        if (QFileInfo(path).isDir()) {
            const QDir dir(path);
            for (const QString& name : dir.entryList(QDir::Files, QDir::Name))
                files << dir.filePath(name);
        } else {
            files << path;
        }
    }
    int ran = 0;
    for (const QString& path : qAsConst(files)) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", qPrintable(path));
            return 2;
        }
        const QByteArray data = file.readAll();
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(data.constData()), size_t(data.size()));
        ++ran;
    }
    std::printf("%d inputs ran\n", ran);
    return ran > 0 ? 0 : 1;
}
