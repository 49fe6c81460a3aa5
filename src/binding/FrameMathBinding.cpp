#include "binding/Binding.h"

using harvlink::Binding::As;

inline namespace harvlink_c {

void vector_math_inner_product(XyzVector const* first, XyzVector const* second, double* out) {
    harvlink::InnerProduct(&As<harvlink::XyzVector>(first), &As<harvlink::XyzVector>(second), out);
}

void vector_math_cross_product(XyzVector const* first, XyzVector const* second, XyzVector* out) {
    harvlink::CrossProduct(&As<harvlink::XyzVector>(first), &As<harvlink::XyzVector>(second),
                           &As<harvlink::XyzVector>(out));
}

void frame_math_invert_frame(EulerMatrix const* in, EulerMatrix* out) {
    harvlink::InvertFrame(&As<harvlink::EulerMatrix>(in), &As<harvlink::EulerMatrix>(out));
}

void frame_math_rotate_frame(EulerMatrix const* frame, XyzVector const* axis, EulerMatrix* out, double angle) {
    harvlink::RotateFrame(&As<harvlink::EulerMatrix>(frame), &As<harvlink::XyzVector>(axis),
                          &As<harvlink::EulerMatrix>(out), angle);
}

void frame_math_frame_to_zyx_euler(EulerMatrix const* in, ZyxEulerPose* out) {
    harvlink::FrameToZYXeuler(&As<harvlink::EulerMatrix>(in), &As<harvlink::ZyxEulerPose>(out));
}

void frame_math_multiply_frames(EulerMatrix const* first, EulerMatrix const* second, EulerMatrix* out) {
    harvlink::MultiplyFrames(&As<harvlink::EulerMatrix>(first), &As<harvlink::EulerMatrix>(second),
                             &As<harvlink::EulerMatrix>(out));
}

void frame_math_zyx_euler_to_frame(ZyxEulerPose const* in, EulerMatrix* out) {
    harvlink::ZYXeulerToFrame(&As<harvlink::ZyxEulerPose>(in), &As<harvlink::EulerMatrix>(out));
}

void frame_math_set_identity_matrix_in_frame(EulerMatrix* out) {
    harvlink::SetIdentityMatrixInFrame(&As<harvlink::EulerMatrix>(out));
}

} // namespace harvlink_c
