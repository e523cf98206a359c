# Makes OUTPUT, the source of Workbench::exampleFiles(), from the files below FOLDER (joined by "|") whose paths are
# example/file.
string(REPLACE "|" ";" files "${FILES}")
set(source "#include \"Workbench/src/Examples.h\"\n\nnamespace Workbench {\n\n")
string(APPEND source "const std::vector<ExampleFile> &exampleFiles() {\n  static const std::vector<ExampleFile> files{\n")
foreach(file IN LISTS files)
  get_filename_component(example "${file}" DIRECTORY)
  get_filename_component(name "${file}" NAME)
  file(READ "${FOLDER}/${file}" text)
  string(APPEND source "{\"${example}\", \"${name}\", R\"optstudy(${text})optstudy\"},\n")
endforeach()
string(APPEND source "  };\n  return files;\n}\n\n} // namespace Workbench\n")
file(WRITE "${OUTPUT}" "${source}")
