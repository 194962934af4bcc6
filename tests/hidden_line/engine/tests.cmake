# Hidden-line engine: numeric tests and the hide pass face by face, the engine against the
# reference with what the pass promises of its pieces, face intersection, the repeated pieces of a drawing. The scene generator
# feeds the larger cases.
target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/hide_face_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_engine_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/face_intersect_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/repeats_test.cpp)
target_link_libraries(vogebasic_tests PRIVATE vogebasic_scene)
