# Geometry classes: points, vectors, matrices, lines, planes and circles.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/VoGePoint3D.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeVector3D.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeMatrix3D.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeLine3d.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGePlane3d.cpp
  ${CMAKE_CURRENT_LIST_DIR}/VoGeCircle3d.cpp)
