# The one place for compiler flags: every target of the house links Vantor::Flags.
add_library(VantorFlags INTERFACE)
add_library(Vantor::Flags ALIAS VantorFlags)

option(VANTOR_WERROR "Treat warnings as errors" OFF)
option(VANTOR_FUZZ "Build the fuzz targets for libFuzzer; needs clang" OFF)
set(VANTOR_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize= takes them")

target_compile_features(VantorFlags INTERFACE cxx_std_20)
target_compile_options(VantorFlags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -fvisibility=hidden -fvisibility-inlines-hidden)
target_compile_definitions(VantorFlags INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_CONTEXTLESS_CONNECT QT_STRICT_ITERATORS
  QT_NO_KEYWORDS QT_NO_URL_CAST_FROM_STRING)

if(VANTOR_WERROR)
  target_compile_options(VantorFlags INTERFACE -Werror)
endif()
if(VANTOR_SANITIZE)
  # GCC 12 sees uninitialised values that are none where it instruments memory accesses.
  target_compile_options(VantorFlags INTERFACE
    -fsanitize=${VANTOR_SANITIZE} -fno-omit-frame-pointer
    # Checks before every access that make compiling three times as long; what they find crashes, or the address
    # sanitizer sees it.
    -fno-sanitize=null,object-size,alignment,vptr
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_link_options(VantorFlags INTERFACE -fsanitize=${VANTOR_SANITIZE})
endif()

# Precompiles the standard headers that nearly every file of a target without Qt includes.
function(vantor_precompile_std target)
  target_precompile_headers(${target} PRIVATE
    <algorithm> <cstdint> <functional> <map> <memory> <mutex> <optional> <set> <span> <stdexcept> <string>
    <string_view> <unordered_map> <variant> <vector>)
endfunction()

# Precompiles the Qt headers that nearly every file of a target includes.
function(vantor_precompile_qt target)
  target_precompile_headers(${target} PRIVATE
    <QByteArray> <QDateTime> <QHash> <QList> <QString> <QStringList> <QVariant>
    <atomic> <functional> <memory> <mutex> <optional> <string> <vector>)
endfunction()

# The same for targets with windows.
function(vantor_precompile_widgets target)
  target_precompile_headers(${target} PRIVATE
    <QAction> <QBoxLayout> <QDialog> <QHash> <QLabel> <QLineEdit> <QList> <QMenu> <QPushButton> <QString> <QStringList>
    <QTimer> <QVariant> <QWidget> <functional> <memory> <mutex> <optional> <vector>)
endfunction()

# Compiles a library's files several at a time: parsing headers is most of the work. Names in anonymous namespaces must
# then differ within the library.
function(vantor_compile_together target)
  set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
  # The file that is compiled includes the others: what is in their anonymous namespaces looks as if it came from headers.
  target_compile_options(${target} PRIVATE -Wno-subobject-linkage)
endfunction()
