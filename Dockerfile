# SPDX-FileCopyrightText: Copyright The libqvxcs authors
# SPDX-License-Identifier: MIT
# Builds the library and its tests. Running it runs the tests, which make private namespaces:
#   docker build -t libqvxcs . && docker run --rm --privileged libqvxcs
FROM debian:bookworm-slim
COPY scripts/setup /libqvxcs/scripts/
RUN /libqvxcs/scripts/setup test && rm -rf /var/lib/apt/lists/*
COPY . /libqvxcs
WORKDIR /libqvxcs
RUN cmake --preset release && cmake --build --preset release
CMD ["scripts/test"]
