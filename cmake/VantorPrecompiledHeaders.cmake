# The headers that nearly every file of a kind of target includes.
set(VANTOR_HEADERS_std
  <algorithm> <cstdint> <functional> <map> <memory> <mutex> <optional> <set> <span> <stdexcept> <string> <string_view>
  <unordered_map> <variant> <vector>)
set(VANTOR_HEADERS_qt
  <QByteArray> <QDateTime> <QDir> <QFile> <QHash> <QJsonObject> <QList> <QString> <QStringList> <QVariant>
  <atomic> <condition_variable> <functional> <memory> <mutex> <optional> <string> <thread> <vector>)
set(VANTOR_HEADERS_widgets
  <QAction> <QBoxLayout> <QComboBox> <QDialog> <QFile> <QHash> <QHeaderView> <QLabel> <QLineEdit> <QList> <QMenu>
  <QPlainTextEdit> <QPushButton> <QString> <QStringList> <QTimer> <QTreeView> <QVariant> <QWidget>
  <functional> <memory> <mutex> <optional> <vector>)

# vantor_precompile(TARGET std|qt|widgets [tests]): compiles those headers once for all targets that are compiled with the
# same options. With tests, GoogleTest's header is one of them, and the options are those of the test programs.
function(vantor_precompile target kind)
  if(VANTOR_PLAIN)
    return()
  endif()
  get_target_property(checked ${target} VANTOR_CHECK_ACCESSES)
  set(headers headers-${kind})
  if(checked AND VANTOR_SANITIZE)
    string(APPEND headers -checked)
  endif()
  if("tests" IN_LIST ARGN)
    string(APPEND headers -tests)
    target_link_libraries(${target} PRIVATE GTest::gtest)
  endif()
  if(NOT TARGET ${headers})
    add_library(${headers} OBJECT ${CMAKE_SOURCE_DIR}/cmake/PrecompiledHeaders.cpp)
    target_link_libraries(${headers} PRIVATE Vantor::Flags)
    target_precompile_headers(${headers} PRIVATE ${VANTOR_HEADERS_${kind}})
    set_target_properties(${headers} PROPERTIES PCH_INSTANTIATE_TEMPLATES ON) # Clang only
    if(kind STREQUAL qt)
      target_link_libraries(${headers} PRIVATE Qt6::Network)
    elseif(kind STREQUAL widgets)
      target_link_libraries(${headers} PRIVATE Qt6::Network Qt6::Widgets)
      vantor_optimize_lightly(${headers})
    endif()
    if(checked)
      vantor_check_accesses(${headers})
    endif()
    if("tests" IN_LIST ARGN)
      vantor_compile_quickly(${headers})
      target_link_libraries(${headers} PRIVATE GTest::gtest)
      target_precompile_headers(${headers} PRIVATE <gtest/gtest.h>)
    endif()
  endif()
  target_precompile_headers(${target} REUSE_FROM ${headers})
endfunction()
