#pragma once

namespace coffrelune {

/// Makes the calling thread one on which extensions of the shell can run, as long as this lives.
/// Does no harm where a toolkit has done so before.
class Apartment {
  public:
    Apartment();
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
    ~Apartment();

  private:
    bool entered_;
};

}  // namespace coffrelune
