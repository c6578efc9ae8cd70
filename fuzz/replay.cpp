// Replays a libFuzzer corpus as an ordinary test: every file (or every file of
// every directory) named on the command line goes through the fuzz entry once.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

static void run_file(const std::filesystem::path &path)
{
    std::ifstream in(path, std::ios::binary);
    std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

int main(int argc, char **argv)
{
    size_t count = 0;
    for (int i = 1; i < argc; i++) {
        std::filesystem::path arg(argv[i]);
        if (std::filesystem::is_directory(arg)) {
            for (const auto &entry : std::filesystem::recursive_directory_iterator(arg))
                if (entry.is_regular_file()) {
                    run_file(entry.path());
                    count++;
                }
        } else if (std::filesystem::is_regular_file(arg)) {
            run_file(arg);
            count++;
        } else {
            std::fprintf(stderr, "no such corpus: %s\n", argv[i]);
            return 1;
        }
    }
    std::printf("replayed %zu inputs\n", count);
    return count > 0 ? 0 : 1;
}
