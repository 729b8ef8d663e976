// Reads where no memory is.
int main() {
  static int* volatile nowhere = nullptr;
  return *nowhere;
}
