#pragma once

namespace lmp {

/// Whether the scene is drawn by the graphics card or by the processor.
///
/// Free of state. Where OpenGL is itself done by the processor, drawing without it starts faster and takes far less
/// memory, and what our screens draw looks the same.
class GraphicsChoice {
public:
    /// Chooses for the process; before the application object is made. What the environment says explicitly
    /// (QT_QUICK_BACKEND, QSG_RHI_BACKEND) holds.
    static void make();

    /// Whether this machine has nothing but a software OpenGL, as far as can be told without loading one.
    static bool onlySoftware();
};

} // namespace lmp
