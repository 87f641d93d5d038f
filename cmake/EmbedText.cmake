# Makes a C++ source holding a text file as one string constant, so that a program carries its
# default data without being installed:
#   cmake -DINPUT=file.tsv -DOUTPUT=file.cpp -DNAME=kName -P EmbedText.cmake
file(READ "${INPUT}" text)
string(FIND "${text}" ")tsv\"" clash)
if(NOT clash EQUAL -1)
    message(FATAL_ERROR "${INPUT} holds the raw string's closing sequence")
endif()
file(WRITE "${OUTPUT}.tmp" "// Made at build time from ${INPUT}; edit that file, not this one.\nextern const char* const ${NAME};\nconst char* const ${NAME} = R\"tsv(${text})tsv\";\n")
file(COPY_FILE "${OUTPUT}.tmp" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.tmp")
