# Qt for the layers above the engine. Interface descriptions lie in resources/.

find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets)

# Makes `target` one that has Qt objects and compiles the interface descriptions that it includes.
function(velmora_uses_qt target)
    set_target_properties(${target} PROPERTIES
        AUTOMOC ON
        AUTOUIC ON
        AUTOUIC_SEARCH_PATHS ${PROJECT_SOURCE_DIR}/resources
    )
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
endfunction()
