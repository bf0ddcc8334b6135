/// \file
/// The OpenGL enumerants that streams and builders take.
///
/// Each is defined where no OpenGL header has defined it yet, in the words of the Khronos headers,
/// so that any of those may follow or come before: libepoxy, GLEW, glad, Qt's. Include the loader
/// of your choice to call OpenGL; <OrvGL/OpenGLFunctions.h> is that of libOrvGL.
#pragma once

/// \addtogroup build
/// @{

/// \name Types of elements
/// @{
#ifndef GL_BYTE
#define GL_BYTE 0x1400 ///< signed, 1 byte
#endif
#ifndef GL_UNSIGNED_BYTE
#define GL_UNSIGNED_BYTE 0x1401 ///< unsigned, 1 byte
#endif
#ifndef GL_SHORT
#define GL_SHORT 0x1402 ///< signed, 2 bytes
#endif
#ifndef GL_UNSIGNED_SHORT
#define GL_UNSIGNED_SHORT 0x1403 ///< unsigned, 2 bytes
#endif
#ifndef GL_INT
#define GL_INT 0x1404 ///< signed, 4 bytes
#endif
#ifndef GL_UNSIGNED_INT
#define GL_UNSIGNED_INT 0x1405 ///< unsigned, 4 bytes
#endif
#ifndef GL_FLOAT
#define GL_FLOAT 0x1406 ///< floating point, 4 bytes
#endif
#ifndef GL_DOUBLE
#define GL_DOUBLE 0x140A ///< floating point, 8 bytes
#endif
#ifndef GL_HALF_FLOAT
#define GL_HALF_FLOAT 0x140B ///< floating point, 2 bytes
#endif
/// @}

/// \name Usage of buffers
/// @{
#ifndef GL_STREAM_DRAW
#define GL_STREAM_DRAW 0x88E0 ///< filled once, drawn a few times
#endif
#ifndef GL_STATIC_DRAW
#define GL_STATIC_DRAW 0x88E4 ///< filled once, drawn often
#endif
#ifndef GL_DYNAMIC_DRAW
#define GL_DYNAMIC_DRAW 0x88E8 ///< filled and drawn often
#endif
/// @}

/// \name Types of primitives
/// @{
#ifndef GL_POINTS
#define GL_POINTS 0x0000 ///< one index each
#endif
#ifndef GL_LINES
#define GL_LINES 0x0001 ///< two indices each
#endif
#ifndef GL_TRIANGLES
#define GL_TRIANGLES 0x0004 ///< three indices each
#endif
/// @}

/// @}
