# The dialogs of shapes, built from their sources.
set(polyline ${PROJECT_SOURCE_DIR}/controls/polyline)
marlox_test(polyline_dialogs_test
    SOURCES ${CMAKE_CURRENT_LIST_DIR}/polyline_dialogs_test.cpp
        ${polyline}/ImportShapeDlg.cpp ${polyline}/ImportShapeDlg.h
        ${polyline}/OnionSkinSettings.cpp
        ${polyline}/OnionSkinningDlg.cpp ${polyline}/OnionSkinningDlg.h
        ${polyline}/PolyKeyListDlg.cpp ${polyline}/PolyKeyListDlg.h
        ${polyline}/PolyKeyModel.cpp ${polyline}/PolyKeyModel.h
        ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.cpp
        ${PROJECT_SOURCE_DIR}/tests/host/controls/Probe.h
    LIBS marloxscript)
