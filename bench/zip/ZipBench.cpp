// Archives side by side with libzip and minizip: listing 10,000 members, and reading every member
// of a package of 100 MB. The archives are files that are in the page cache.
#include <RynCommon/RyZipFile.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "BenchData.h"

#ifdef RYN_BENCH_LIBZIP
#include <zip.h>
#endif
#ifdef RYN_BENCH_MINIZIP
#include <minizip/unzip.h>
#endif

namespace RynCommon {
namespace {

constexpr std::size_t READ_SIZE = 64 * 1024;
constexpr std::uint64_t PACKAGE_SIZE = 100'000'000;

/// The archives that are measured, made once.
struct Archives {
    /// 10,000 members of 1 KB, and of 10 KB that do not compress.
    BenchFile small = makeArchive(10'000, 1'000, true);
    BenchFile large = makeArchive(10'000, 10'000, false);
    /// 100 MB when unpacked, in members of 4 KB to 4 MB as office packages have them.
    BenchFile package = makePackage(PACKAGE_SIZE);
};

const Archives& getArchives() {
    static const Archives archives;
    return archives;
}

using Archive = BenchFile Archives::*;

const char* pathOf(Archive archive) {
    return (getArchives().*archive).getPath().c_str();
}

RyZipFile openOurs(Archive archive, bool fromDirectory, bool verify = false) {
    RyZipFile zip;
    zip.setUseCentralDirectory(fromDirectory);
    zip.setVerify(verify);
    zip.open(pathOf(archive));
    return zip;
}

void finish(benchmark::State& state, std::uint64_t bytes) {
    const auto expected = PACKAGE_SIZE * static_cast<std::uint64_t>(state.iterations());
    if (bytes != expected) state.SkipWithError("bytes are missing");
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void listOurs(benchmark::State& state, Archive archive, bool fromDirectory) {
    for (auto _ : state) {
        const RyZipFile zip = openOurs(archive, fromDirectory);
        std::uint64_t sum = 0;
        for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
            const RyZipFileEntry& entry = *zip.getFileEntry(i);
            sum += entry.getUncompressedSize() + entry.getFileName().length();
        }
        if (zip.getFileEntryCount() != 10'000) state.SkipWithError("members are missing");
        benchmark::DoNotOptimize(sum);
    }
}

void readOurs(benchmark::State& state, bool fromDirectory, bool verify) {
    std::vector<char> buffer(READ_SIZE);
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        const RyZipFile zip = openOurs(&Archives::package, fromDirectory, verify);
        for (unsigned i = 0; i < zip.getFileEntryCount(); ++i) {
            std::istream& in = *zip.getFileEntry(i)->getUncompressedStream(false);
            while (in.read(buffer.data(), READ_SIZE) || in.gcount() > 0) bytes += in.gcount();
            if (in.bad()) state.SkipWithError("wrong checksum");
        }
    }
    finish(state, bytes);
}

BENCHMARK_CAPTURE(listOurs, small, &Archives::small, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listOurs, smallDirectory, &Archives::small, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listOurs, large, &Archives::large, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listOurs, largeDirectory, &Archives::large, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readOurs, package, false, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readOurs, packageDirectory, true, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(readOurs, packageVerified, true, true)->Unit(benchmark::kMillisecond);

#ifdef RYN_BENCH_LIBZIP
void listLibzip(benchmark::State& state, Archive archive) {
    for (auto _ : state) {
        zip_t* const zip = zip_open(pathOf(archive), ZIP_RDONLY, nullptr);
        const zip_int64_t count = zip_get_num_entries(zip, 0);
        std::uint64_t sum = 0;
        for (zip_int64_t i = 0; i < count; ++i) {
            zip_stat_t entry;
            zip_stat_index(zip, static_cast<zip_uint64_t>(i), 0, &entry);
            sum += entry.size + static_cast<unsigned char>(entry.name[0]);
        }
        benchmark::DoNotOptimize(sum);
        zip_discard(zip);
        if (count != 10'000) state.SkipWithError("members are missing");
    }
}

void readLibzip(benchmark::State& state) {
    std::vector<char> buffer(READ_SIZE);
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        zip_t* const zip = zip_open(pathOf(&Archives::package), ZIP_RDONLY, nullptr);
        const zip_int64_t count = zip_get_num_entries(zip, 0);
        for (zip_int64_t i = 0; i < count; ++i) {
            zip_file_t* const file = zip_fopen_index(zip, static_cast<zip_uint64_t>(i), 0);
            zip_int64_t got;
            while ((got = zip_fread(file, buffer.data(), READ_SIZE)) > 0) bytes += got;
            zip_fclose(file);
        }
        zip_discard(zip);
    }
    finish(state, bytes);
}

BENCHMARK_CAPTURE(listLibzip, small, &Archives::small)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listLibzip, large, &Archives::large)->Unit(benchmark::kMillisecond);
BENCHMARK(readLibzip)->Unit(benchmark::kMillisecond);
#endif

#ifdef RYN_BENCH_MINIZIP
/// Calls `visit` with the handle at each member; the number of members.
template <class Visit>
int visitMinizip(Archive archive, Visit visit) {
    unzFile zip = unzOpen64(pathOf(archive));
    int count = 0;
    for (int status = unzGoToFirstFile(zip); status == UNZ_OK; status = unzGoToNextFile(zip)) {
        visit(zip);
        ++count;
    }
    unzClose(zip);
    return count;
}

void listMinizip(benchmark::State& state, Archive archive) {
    for (auto _ : state) {
        std::uint64_t sum = 0;
        const int count = visitMinizip(archive, [&](unzFile zip) {
            unz_file_info64 entry;
            char name[256];
            unzGetCurrentFileInfo64(zip, &entry, name, sizeof name, nullptr, 0, nullptr, 0);
            sum += entry.uncompressed_size + entry.size_filename;
        });
        benchmark::DoNotOptimize(sum);
        if (count != 10'000) state.SkipWithError("members are missing");
    }
}

void readMinizip(benchmark::State& state) {
    std::vector<char> buffer(READ_SIZE);
    std::uint64_t bytes = 0;
    for (auto _ : state) {
        visitMinizip(&Archives::package, [&](unzFile zip) {
            unzOpenCurrentFile(zip);
            int got;
            while ((got = unzReadCurrentFile(zip, buffer.data(), READ_SIZE)) > 0) bytes += got;
            unzCloseCurrentFile(zip);
        });
    }
    finish(state, bytes);
}

BENCHMARK_CAPTURE(listMinizip, small, &Archives::small)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(listMinizip, large, &Archives::large)->Unit(benchmark::kMillisecond);
BENCHMARK(readMinizip)->Unit(benchmark::kMillisecond);
#endif

}  // namespace
}  // namespace RynCommon

BENCHMARK_MAIN();
