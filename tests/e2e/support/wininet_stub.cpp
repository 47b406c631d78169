// A web library of the level that the launcher asks for, as far as it looks.

extern "C" __declspec(dllexport) int HttpWebSocketReceive() {
    return 0;
}
