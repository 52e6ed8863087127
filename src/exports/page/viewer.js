// Shows the model of this page. Nothing is fetched: model and pictures stand in the page as base64.
(function () {
  "use strict";

  const page = (id) => document.getElementById(id);
  const word = page("word");

  // What happens is written on the page and into its root element, where whoever drives a browser finds it.
  function tell(state, text) {
    document.documentElement.dataset.state = state;
    word.textContent = text;
    word.hidden = text === "";
  }

  // Piece by piece: the whole as a text of bytes would take several times the memory.
  function bytesOf(element) {
    const text = element.textContent;
    const perPiece = 1 << 20;
    const padding = text.endsWith("==") ? 2 : text.endsWith("=") ? 1 : 0;
    const bytes = new Uint8Array((text.length / 4) * 3 - padding);
    let at = 0;
    for (let from = 0; from < text.length; from += perPiece) {
      const piece = atob(text.slice(from, from + perPiece));
      for (let k = 0; k < piece.length; ++k) bytes[at++] = piece.charCodeAt(k);
    }
    element.remove();
    return bytes;
  }

  const canvas = page("view");
  // Pictures of any size are textures as they are only there.
  const context = canvas.getContext("webgl2", { antialias: true });
  if (!context) {
    tell("failed", "This browser has no WebGL 2, which the model is drawn with.");
    return;
  }
  const renderer = new THREE.WebGLRenderer({ canvas: canvas, context: context });
  renderer.setClearColor(0x26282b);
  renderer.gammaOutput = true;
  renderer.gammaFactor = 2.2;

  const scene = new THREE.Scene();
  const camera = new THREE.PerspectiveCamera(30, 1, 1, 10);
  const light = new THREE.DirectionalLight(0xffffff, 0.8);
  light.position.set(-1, 1, 1.5);
  camera.add(light);
  scene.add(camera, new THREE.AmbientLight(0xffffff, 0.25));
  const controls = new THREE.OrbitControls(camera, canvas);

  let drawingIsDue = false;
  function draw() {
    if (drawingIsDue) return;
    drawingIsDue = true;
    requestAnimationFrame(function () {
      drawingIsDue = false;
      renderer.render(scene, camera);
    });
  }
  controls.addEventListener("change", draw);

  function fit() {
    renderer.setPixelRatio(window.devicePixelRatio);
    renderer.setSize(canvas.clientWidth, canvas.clientHeight, false);
    camera.aspect = canvas.clientWidth / Math.max(1, canvas.clientHeight);
    camera.updateProjectionMatrix();
    draw();
  }

  // How far away all corners of the box are on the screen, seen along the axes of the camera.
  function distanceFor(box) {
    const up = Math.tan(THREE.Math.degToRad(camera.fov / 2)) * 0.92;
    const middle = box.getCenter(new THREE.Vector3());
    const toCamera = camera.quaternion.clone().inverse();
    let distance = 1e-6;
    for (let k = 0; k < 8; ++k) {
      const corner = new THREE.Vector3(
        k & 1 ? box.max.x : box.min.x, k & 2 ? box.max.y : box.min.y, k & 4 ? box.max.z : box.min.z);
      corner.sub(middle).applyQuaternion(toCamera);
      const across = Math.max(Math.abs(corner.y) / up, Math.abs(corner.x) / (up * camera.aspect));
      distance = Math.max(distance, corner.z + across);
    }
    return distance;
  }

  // The picture stands upright before the camera, which is in that direction of it.
  function look(box, direction) {
    controls.target.copy(box.getCenter(new THREE.Vector3()));
    camera.position.copy(controls.target).add(direction);
    camera.lookAt(controls.target);
    const distance = distanceFor(box);
    camera.position.copy(controls.target).addScaledVector(direction.normalize(), distance);
    controls.minDistance = distance / 20;
    controls.maxDistance = distance * 8;
    camera.near = distance / 50;
    camera.far = distance * 20;
    camera.updateProjectionMatrix();
    controls.update();
    draw();
  }

  // Decoded and encoded by the same power, so that the colours on the screen are those of the picture.
  function prepare(texture) {
    texture.encoding = THREE.GammaEncoding;
    texture.flipY = false;
    texture.wrapS = texture.wrapT = THREE.ClampToEdgeWrapping;
    texture.magFilter = THREE.LinearFilter;
    texture.minFilter = THREE.LinearMipmapLinearFilter;
    texture.anisotropy = renderer.capabilities.getMaxAnisotropy();
    texture.needsUpdate = true;
    return texture;
  }

  function relitMaterial() {
    const element = page("relit");
    if (element.textContent === "") return null;
    const url = URL.createObjectURL(new Blob([bytesOf(element)], { type: element.dataset.type }));
    const material = new THREE.MeshBasicMaterial({ side: THREE.DoubleSide });
    const image = new Image();
    image.onload = function () {
      URL.revokeObjectURL(url);
      material.map = prepare(new THREE.Texture(image));
      material.needsUpdate = true;
      draw();
    };
    image.src = url;
    return material;
  }

  function offerTextures(surface, picture) {
    const choices = {
      picture: new THREE.MeshBasicMaterial({ map: prepare(picture), side: THREE.DoubleSide }),
      relit: relitMaterial(),
      none: surface.material,
    };
    page("relit-choice").hidden = choices.relit === null;
    page("textures").hidden = false;
    page("textures").addEventListener("change", function (event) {
      surface.material = choices[event.target.value];
      draw();
    });
    page("textures").reset();
    surface.material = choices.picture;
  }

  function show(gltf) {
    // Its heights point upwards; here they point at who looks at it.
    gltf.scene.rotation.x = Math.PI / 2;
    scene.add(gltf.scene);
    gltf.scene.updateMatrixWorld(true);
    gltf.scene.traverse(function (node) {
      if (!node.isMesh) return;
      const picture = node.material.map;
      node.material = new THREE.MeshPhongMaterial({ color: 0x9aa0a6, specular: 0x111111, side: THREE.DoubleSide });
      if (picture) offerTextures(node, picture);
    });
    // Controls and camera tell small changes from none by the size that things usually have.
    const size = new THREE.Box3().setFromObject(gltf.scene).getSize(new THREE.Vector3()).length();
    gltf.scene.scale.setScalar(1 / (size || 1));
    const box = new THREE.Box3().setFromObject(gltf.scene);
    fit();
    look(box, new THREE.Vector3(-0.4, 0.25, 1));
    page("front").hidden = false;
    page("front").addEventListener("click", () => look(box, new THREE.Vector3(0, 0, 1)));
    tell("ready", "");
  }

  window.addEventListener("resize", fit);
  const failed = (error) => tell("failed", "The model cannot be shown: " + error.message);
  try {
    new THREE.GLTFLoader().parse(bytesOf(page("model")).buffer, "", show, failed);
  } catch (error) {
    failed(error);
  }
})();
