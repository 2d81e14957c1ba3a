# tactile_add_translation(<name> <file.ts> <path>): library tactile_<name>, whose only content is the table of the file,
# compiled, as resource ":/<path>". A program that links it statically asks for it with Q_INIT_RESOURCE(<name>).
function(tactile_add_translation name ts_file path)
  set(qm_file ${CMAKE_CURRENT_BINARY_DIR}/${name}.qm)
  set(qrc_file ${CMAKE_CURRENT_BINARY_DIR}/${name}.qrc)
  set(rcc_file ${CMAKE_CURRENT_BINARY_DIR}/qrc_${name}.cpp)
  add_custom_command(
    OUTPUT ${qm_file}
    COMMAND Qt5::lrelease -silent ${CMAKE_CURRENT_SOURCE_DIR}/${ts_file} -qm ${qm_file}
    DEPENDS ${ts_file}
    COMMENT "Compiling ${ts_file}")
  file(GENERATE OUTPUT ${qrc_file} CONTENT
    "<RCC><qresource prefix=\"/\"><file alias=\"${path}\">${qm_file}</file></qresource></RCC>\n")
  add_custom_command(
    OUTPUT ${rcc_file}
    COMMAND Qt5::rcc --name ${name} ${qrc_file} -o ${rcc_file}
    DEPENDS ${qm_file} ${qrc_file}
    COMMENT "Embedding ${ts_file}")
  add_library(tactile_${name} STATIC ${rcc_file})
  set_target_properties(tactile_${name} PROPERTIES AUTOMOC OFF AUTOUIC OFF AUTORCC OFF)
  target_link_libraries(tactile_${name} PRIVATE Qt5::Core)
endfunction()
