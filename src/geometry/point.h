#ifndef CORVEX_GEOMETRY_POINT_H_
#define CORVEX_GEOMETRY_POINT_H_

namespace Vantis::Location {

// A 2-D position with the working marks of the k-means calculator's density clustering.
class Point {
 public:
  Point() = default;
  Point(double lon, double lat);
  Point(double lon, double lat, int id);

  int getId() const { return id_; }
  void setId(int id) { id_ = id; }
  double getLon() const { return lon_; }
  void setLon(double lon) { lon_ = lon; }
  double getLat() const { return lat_; }
  void setLat(double lat) { lat_ = lat; }
  // x/y are the same fields as lon/lat.
  double getPosX() const { return lon_; }
  void setPosX(double x) { lon_ = x; }
  double getPosY() const { return lat_; }
  void setPosY(double y) { lat_ = y; }
  bool isVisit() const { return visit_; }
  void setVisit(bool visit) { visit_ = visit; }
  bool isClassed() const { return classed_; }
  void setClassed(bool classed) { classed_ = classed; }
  bool isKey() const { return key_; }
  void setKey(bool key) { key_ = key; }
  bool isNoised() const { return noised_; }
  void setNoised(bool noised) { noised_ = noised; }
  int getCluster() const { return cluster_; }
  void setCluster(int cluster) { cluster_ = cluster; }
  // Accuracy (metres).
  float getAcc() const { return acc_; }
  void setAcc(float acc) { acc_ = acc; }

  // Degrees to radians with pi truncated to 3.1415926; distances depend on that truncation.
  static double rad(double degrees);
  // Plane distance of (lon, lat) as plain coordinates.
  double getDistance(Point const& other) const;
  // Haversine distance (metres) on a 6371.393 km sphere, rounded to whole metres.
  double getDistanceGNSS(Point const& other) const;

  // Same lon, lat and id; the marks, cluster and acc are ignored.
  bool operator==(Point const& other) const;

 private:
  int id_ = 0;
  double lon_ = 0;
  double lat_ = 0;
  bool visit_ = false;    // already examined by the clustering
  bool classed_ = false;  // already placed in a cluster
  bool key_ = false;      // core point
  bool noised_ = false;   // noise point
  int cluster_ = 0;
  float acc_ = 0;
};

}  // namespace Vantis::Location

#endif  // CORVEX_GEOMETRY_POINT_H_
