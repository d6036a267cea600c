#pragma once

/// A library with the interface of ONNX Runtime that counts, and fails when told to. Its one model
/// gives back its input; entries that nobody should call abort.
extern "C" {

/// How it answers: 0 as it should, 1 without an interface, 2 with none of the known versions,
/// 3 like a runtime that knows versions up to 14.
void pretendAnswer(int kind);
/// The call that fails, counted from 0 over those that can fail; -1 for none. Counting starts anew.
void pretendFailure(int call);
/// The slot that failed since; -1 for none.
int pretendFailedSlot();
/// Objects handed out and not yet given back.
int pretendLive();
/// How often the interface was asked for.
int pretendAsked();
}
