// Replaced as soon as this service has sources of its own.
