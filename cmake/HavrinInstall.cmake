# What `cmake --install` copies.
