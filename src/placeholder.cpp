// Replaced as soon as the engine has sources of its own.
