// A fresh folder under the system's temporary folder for one test, removed with everything in it
// afterwards.
#pragma once

#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace kxtest {

class TempFolder {
public:
    TempFolder() {
        static std::atomic<int> counter{0};
        const auto base = std::filesystem::temp_directory_path();
        for (;;) {
            path_ = base / ("kx_test_" + std::to_string(::getpid()) + "_" + std::to_string(counter++));
            if (std::filesystem::create_directory(path_))
                break;
        }
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }
    std::string read(const std::string& name) const {
        std::ifstream in(path_ / name, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::filesystem::path path_;
};

}  // namespace kxtest
