declare module "worker-text" {
  const text: string;
  export default text;
}
