// The standard streams of a program that was started without some of them.
#pragma once

namespace vantor {

/// Opens the null device for each of standard input, output and error that is closed. Otherwise the
/// next file or port would get its descriptor, and with it the text that is meant for the stream.
/// To be called before anything is opened.
void OpenStandardStreams();

}  // namespace vantor
