// A graphics library of our own for tests: it writes down each call as a line of text, and carries out no
// more than matrices, viewport, read buffer and one pixel.
#pragma once

#include <string>
#include <vector>

namespace gl_recorder {

// The calls since Reset or the last Take, such as "glEnable(GL_LIGHT1)".
std::vector<std::string> Take();

// Forgets everything: calls, names, matrices.
void Reset();

// The name that an array goes by in the calls.
void Name(const void* array, const std::string& name);

// What glReadPixels gives for one pixel, in red, green, blue, alpha.
void SetPixel(unsigned char red, unsigned char green, unsigned char blue, unsigned char alpha = 255);
// What it leaves: false when the place asked for lies outside of the picture and nothing is written.
void WritePixel(bool writes);
// The byte that larger areas are filled with, for each buffer that can be read.
void SetFrontByte(unsigned char byte);
void SetBackByte(unsigned char byte);

// The version that the library tells of itself, "2.1" after Reset.
void SetVersion(const char* version);
// The address of one of its functions for buffers, or null.
void (*FindFunction(const char* name))();
// Refuses all buffers from the `number`th on, counted from 1, for want of memory; 0 refuses none.
void RefuseBuffersFrom(int number);
// Buffers made and not deleted, and the bytes in them.
std::size_t Buffers();
std::size_t BufferBytes();

// The current matrix, column by column.
std::vector<float> ModelView();
std::vector<float> Projection();
void SetModelView(const std::vector<float>& matrix);
// Matrices pushed and not popped, over both stacks.
std::size_t PushedMatrices();
bool ModelViewIsSelected();

} // namespace gl_recorder
