// A host in small: loads the plug-in and draws one frame of a transition, from dusk to dawn.
//
//     host Pinwheel 0.4 out.ppm
#include <catalogue/catalogue.h>
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

// This host's frames, BGRX and bottom-up. Its accessors take the place of the image library's: the program
// exports them (-rdynamic), and the plug-in finds these first.
struct Frame {
    std::int32_t width = 640, height = 360;
    std::vector<std::uint8_t> bits = std::vector<std::uint8_t>(640 * 360 * 4);
};

std::int32_t DIGetWidth(DIImage image) { return image != nullptr ? static_cast<Frame*>(image)->width : 0; }
std::int32_t DIGetHeight(DIImage image) { return image != nullptr ? static_cast<Frame*>(image)->height : 0; }
std::int32_t DIGetPitch(DIImage image) { return static_cast<Frame*>(image)->width * 4; }
std::uint8_t* DIGetBits(DIImage image) { return static_cast<Frame*>(image)->bits.data(); }
std::int32_t DIGetBitCount(DIImage) { return 32; }

void* load(const std::string& library) {
    void* const loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (loaded == nullptr) std::fprintf(stderr, "%s\n", dlerror()), std::exit(1);
    return loaded;
}

int main(int argc, char** argv) {
    if (argc != 4) return std::fprintf(stderr, "Usage: host TRANSITION POSITION OUT.ppm\n"), 2;
    // The plug-in asks for both of its host's libraries by name, and is content with those that are loaded.
    load(STANDINS "/libBrix_ImageProc.so");
    load(STANDINS "/libQeltLogger.so");
    void* const plugin = load(PLUGIN);
    const auto count = reinterpret_cast<decltype(&GetTransCount)>(dlsym(plugin, "GetTransCount"));
    const auto record = reinterpret_cast<decltype(&GetTransInfo)>(dlsym(plugin, "GetTransInfo"));

    Frame out, from, to;
    for (std::size_t i = 0; i < out.bits.size(); i += 4) {
        const auto shade = static_cast<std::uint8_t>(255 * (i / 4 / 640) / 360);  // of the row
        from.bits[i] = shade;
        to.bits[i + 2] = static_cast<std::uint8_t>(255 - shade / 2);
    }
    const TransParam param{{}, 1.0, std::atof(argv[2])};
    const std::string name = argv[1];
    for (std::int32_t i = 0; i < count(); ++i) {
        if (record(i)->szName != std::wstring(name.begin(), name.end())) continue;
        record(i)->pfnTransition(&out, &from, &to, &param);
        std::ofstream file(argv[3], std::ios::binary);
        file << "P6 640 360 255\n";
        for (std::int32_t y = out.height - 1; y >= 0; --y)
            for (std::int32_t x = 0; x < out.width; ++x)
                for (int byte : {2, 1, 0}) file.put(out.bits[4 * (y * out.width + x) + byte] & 0xff);
        return file.flush() ? 0 : 1;
    }
    return std::fprintf(stderr, "No transition is called %s\n", argv[1]), 1;
}
