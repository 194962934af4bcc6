# Hidden-line engine, one internal header a unit: numeric tests (hd_predicates.h: predicates.cpp),
# faces as the engine reads them (hd_faces.h: faces.cpp), the hide pass (hd_pass.h: hide_face.cpp
# face by face, hide_pass.cpp the reference and the shared steps, hide_engine.cpp the library's
# engine), face intersection (hd_face_intersect.h: face_intersect.cpp) and the grid over the
# objects' boxes (box_index.h: box_index.cpp); repeated pieces of a drawing (repeats.cpp).
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/predicates.cpp
  ${CMAKE_CURRENT_LIST_DIR}/faces.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_face.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_pass.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_engine.cpp
  ${CMAKE_CURRENT_LIST_DIR}/face_intersect.cpp
  ${CMAKE_CURRENT_LIST_DIR}/box_index.cpp
  ${CMAKE_CURRENT_LIST_DIR}/repeats.cpp)
