# Writes a C++ source that holds files of a web page: cmake -D OUTPUT=… -D FILES=a;b -P embed.cmake
set(source "#include \"overview/page_files.h\"\n\nnamespace vantle {\n\nnamespace {\n\n")
set(number 0)
foreach(file ${FILES})
    file(READ ${file} bytes HEX)
    string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
    string(APPEND source "constexpr char contents${number}[] = {${bytes}};\n")
    get_filename_component(name ${file} NAME)
    string(APPEND rows "    {\"${name}\", {contents${number}, sizeof contents${number}}},\n")
    math(EXPR number "${number} + 1")
endforeach()
string(APPEND source "constexpr WebFile files[] = {\n${rows}};\n\n}  // namespace\n\n"
                     "std::span<const WebFile> galleryFiles() { return files; }\n\n}  // namespace vantle\n")
file(WRITE ${OUTPUT} "${source}")
